#include "PluginFeatureObserver.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QThread>

namespace
{

// Deleter of the shared observer. On another thread the deletion is handed to
// the owning thread's event loop. When that loop is gone for good (the thread
// has finished, or the application object is destroyed) no deletion would ever
// run there, and nothing on that thread can reach the object any more: it is
// deleted at once.
void destroyOnOwnerThread(PluginFeatureObserver* observer)
{
    QThread* owner = observer->thread();
    if (owner == QThread::currentThread())
    {
        delete observer;
        return;
    }
    if (owner && !owner->isFinished() && QAbstractEventDispatcher::instance(owner) && QCoreApplication::instance())
        observer->deleteLater();
    else
        delete observer;
}

} // namespace

PluginFeatureObserver::PluginFeatureObserver() = default;

PluginFeatureObserver::~PluginFeatureObserver() = default;

OrvCPP::shared_ptr<PluginFeatureObserver> PluginFeatureObserver::create()
{
    return OrvCPP::shared_ptr<PluginFeatureObserver>(new PluginFeatureObserver(), destroyOnOwnerThread);
}

void PluginFeatureObserver::FeatureChanged(const OrvCPP::shared_ptr<OrvCPP::Feature>& feature)
{
    // Runs on a camera API thread: only reads of this feature and the emission.
    if (!feature)
        return;

    std::string name;
    if (feature->GetName(name) != OrvErrorSuccess)
        return;
    const QString featureName = QString::fromStdString(name);

    OrvFeatureDataType type = OrvFeatureDataUnknown;
    if (feature->GetDataType(type) != OrvErrorSuccess)
        return;

    // A failing value read leaves the text empty; the change is reported all the same.
    QString value;
    switch (type)
    {
    case OrvFeatureDataInt:
    {
        long long number = 0;
        if (feature->GetValue(number) == OrvErrorSuccess)
            value = QString::number(number, 10);
        break;
    }
    case OrvFeatureDataFloat:
    {
        double number = 0.0;
        if (feature->GetValue(number) == OrvErrorSuccess)
            value = QString::number(number, 'g', 6);
        break;
    }
    case OrvFeatureDataEnum:
    case OrvFeatureDataString:
    {
        std::string text;
        if (feature->GetValue(text) == OrvErrorSuccess)
            value = QString::fromStdString(text);
        break;
    }
    case OrvFeatureDataBool:
    {
        bool flag = false;
        if (feature->GetValue(flag) == OrvErrorSuccess)
            value = flag ? QStringLiteral("true") : QStringLiteral("false");
        break;
    }
    case OrvFeatureDataCommand:
        value = QStringLiteral("[COMMAND]");
        break;
    case OrvFeatureDataRaw:
        value = QStringLiteral("Click here to open");
        break;
    default:
        break;
    }

    emit setChangedFeature(featureName, value);
}
