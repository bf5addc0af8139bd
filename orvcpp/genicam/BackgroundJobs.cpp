#include "BackgroundJobs.h"

#include <algorithm>
#include <condition_variable>
#include <list>
#include <memory>
#include <mutex>
#include <thread>

#include <pthread.h>

namespace
{

struct Job
{
    std::thread thread;
    bool done = false; // under Jobs::mutex
};

struct Jobs
{
    std::mutex mutex;
    std::condition_variable ended;
    std::list<Job> all;

    // Joins the jobs that have ended; expects mutex held. Their threads have
    // nothing left to do but return, so the joins are short.
    void reap()
    {
        for (auto it = all.begin(); it != all.end();)
        {
            if (!it->done)
            {
                ++it;
                continue;
            }
            it->thread.join();
            it = all.erase(it);
        }
    }

    // At exit: whatever still runs is waited for, so that no job is inside
    // Aravis while the process tears down.
    ~Jobs()
    {
        std::unique_lock<std::mutex> lock(mutex);
        ended.wait(lock, [this] { return std::all_of(all.begin(), all.end(), [](const Job& job) { return job.done; }); });
        reap();
    }
};

Jobs& jobs()
{
    static Jobs instance;
    return instance;
}

} // namespace

void BackgroundJobs::start(std::function<void()> job)
{
    Jobs& owner = jobs();
    std::lock_guard<std::mutex> lock(owner.mutex);
    owner.reap();
    owner.all.emplace_back();
    Job* entry = &owner.all.back(); // list elements stay where they are
    entry->thread = std::thread(
        [&owner, entry, job = std::move(job)]() mutable
        {
            pthread_setname_np(pthread_self(), "triggerio-bg");
            job();
            job = nullptr; // what the job held goes before the owner hears of its end
            std::lock_guard<std::mutex> lock(owner.mutex);
            entry->done = true;
            owner.ended.notify_all();
        });
}

bool BackgroundJobs::waitForAll(std::chrono::milliseconds limit)
{
    Jobs& owner = jobs();
    std::unique_lock<std::mutex> lock(owner.mutex);
    const bool all = owner.ended.wait_for(
        lock, limit,
        [&owner] { return std::all_of(owner.all.begin(), owner.all.end(), [](const Job& job) { return job.done; }); });
    owner.reap();
    return all;
}

int BackgroundJobs::running()
{
    Jobs& owner = jobs();
    std::lock_guard<std::mutex> lock(owner.mutex);
    return int(std::count_if(owner.all.begin(), owner.all.end(), [](const Job& job) { return !job.done; }));
}
