#ifndef MEMORYCAMERA_H
#define MEMORYCAMERA_H

#include "FeatureList.h"

#include <array>
#include <string>

// An in-memory camera of any size for measuring the tab alone.
//
// It holds the features of a line-family camera (the ones the Trigger IO tab
// uses) among filler integer features, half before and half after them, up to
// the size asked for. Every call costs the same whatever the size (values are
// kept in the feature, nothing is looked up), so that a cost that grows with
// the size is the caller's. Calls are counted by operation.
class MemoryCamera
{
public:
    enum Operation
    {
        GetName,
        GetDataType,
        IsWritable,
        IsValueAvailable,
        GetValues,
        GetValue,
        GetRange,
        SetValue,
        RunCommand,
        RegisterObserver,
        UnregisterObserver,
        Other,
        OperationCount
    };
    using Calls = std::array<long, OperationCount>;

    explicit MemoryCamera(int featureCount);

    FeatureList features() const
    {
        return m_features;
    }

    // Plain counters: the tab calls from the GUI thread only, and this camera
    // never calls back from a thread of its own.
    void count(Operation operation)
    {
        ++m_calls[size_t(operation)];
    }
    Calls calls() const;
    static const char* operationName(int operation);

private:
    FeatureList m_features;
    Calls m_calls{};
};

#endif
