#include "PluginFeatureObserver.h"
#include "TestCamera.h"

#include <QtTest>

using TestCam::TestCamera;

class tst_PluginFeatureObserver : public QObject
{
    Q_OBJECT

private slots:
    void emptyHandleEmitsNothing();
};

void tst_PluginFeatureObserver::emptyHandleEmitsNothing()
{
    PluginFeatureObserver observer;
    QSignalSpy spy(&observer, &PluginFeatureObserver::setChangedFeature);
    observer.FeatureChanged(nullptr);
    QCOMPARE(spy.count(), 0);
}

QTEST_GUILESS_MAIN(tst_PluginFeatureObserver)
#include "tst_PluginFeatureObserver.moc"
