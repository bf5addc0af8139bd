#include "FeatureManager.h"
#include "TestCamera.h"

#include <QtTest>

using TestCam::Op;
using TestCam::TestCamera;

class tst_FeatureManager : public QObject
{
    Q_OBJECT

private slots:
    void lookupPrefersFirstAlternative();
};

void tst_FeatureManager::lookupPrefersFirstAlternative()
{
    TestCamera cam;
    cam.addEnum("SyncOutSelector", {"SyncOut1"}, "SyncOut1");
    cam.addEnum("LineOutSelector", {"Line1"}, "Line1");
    FeatureManager fm(cam.features());
    QCOMPARE(fm.GetFeatureByName("LineOutSelector", "SyncOutSelector"), cam.feature("LineOutSelector"));
}

QTEST_GUILESS_MAIN(tst_FeatureManager)
#include "tst_FeatureManager.moc"
