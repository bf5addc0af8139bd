#include "TestCamera.h"

#include <QtTest>

using TestCam::Op;
using TestCam::TestCamera;

namespace
{

class CountingObserver : public OrvCPP::IFeatureObserver
{
public:
    void FeatureChanged(const OrvCPP::shared_ptr<OrvCPP::Feature>& feature) override
    {
        std::string name;
        feature->GetName(name);
        std::lock_guard<std::mutex> lock(mutex);
        names << QString::fromStdString(name);
    }
    std::mutex mutex;
    QStringList names;
};

std::string text(const OrvCPP::shared_ptr<OrvCPP::Feature>& feature)
{
    std::string value;
    feature->GetValue(value);
    return value;
}

} // namespace

// The test camera's own behaviour, which the other suites build on.
class tst_TestCamera : public QObject
{
    Q_OBJECT

private slots:
    void selectorDependentState();
    void writesCheckedAndJournaled();
    void faultsOnceOrAlways();
    void observers();
    void handlesOutliveCamera();
};

void tst_TestCamera::selectorDependentState()
{
    TestCamera cam;
    cam.addEnum("LineSelector", {"Line0", "Line1"}, "Line0");
    cam.addEnum("LineSource", {"Off", "ExposureActive", "Timer0Active"}, "Off")
        .selectedBy("LineSelector")
        .setAt("Line1", "ExposureActive")
        .writableAt("Line0", false)
        .unavailableAt("Line1", {"Timer0Active"});
    const auto source = cam.feature("LineSource");
    bool flag = true;

    QCOMPARE(text(source), std::string("Off"));
    QCOMPARE(source->IsWritable(flag), OrvErrorType(OrvErrorSuccess));
    QVERIFY(!flag);
    QCOMPARE(source->IsValueAvailable("Timer0Active", flag), OrvErrorType(OrvErrorSuccess));
    QVERIFY(flag);

    QCOMPARE(cam.feature("LineSelector")->SetValue("Line1"), OrvErrorType(OrvErrorSuccess));
    QCOMPARE(text(source), std::string("ExposureActive"));
    QCOMPARE(source->IsWritable(flag), OrvErrorType(OrvErrorSuccess));
    QVERIFY(flag);
    QCOMPARE(source->IsValueAvailable("Timer0Active", flag), OrvErrorType(OrvErrorSuccess));
    QVERIFY(!flag);
    QCOMPARE(cam.valueAt("LineSource", "Line0"), QString("Off"));
    QCOMPARE(cam.value("LineSource"), QString("ExposureActive"));
}

void tst_TestCamera::writesCheckedAndJournaled()
{
    TestCamera cam;
    cam.addInt("Width", 30, 0, 100, 10);
    cam.addFloat("ExposureTime", 100.0, 10.0, 1000.0);
    cam.addEnum("TriggerMode", {"Off", "On"}, "Off").unavailable({"On"});
    cam.addBool("ReverseX", false).writable(false);
    const auto width = cam.feature("Width");

    QCOMPARE(width->SetValue(50LL), OrvErrorType(OrvErrorSuccess));
    QCOMPARE(width->SetValue(55LL), OrvErrorType(OrvErrorInvalidValue));
    QCOMPARE(width->SetValue(110LL), OrvErrorType(OrvErrorInvalidValue));
    QCOMPARE(width->SetValue(2.0), OrvErrorType(OrvErrorWrongType));
    QCOMPARE(cam.feature("ExposureTime")->SetValue(5.0), OrvErrorType(OrvErrorInvalidValue));
    QCOMPARE(cam.feature("TriggerMode")->SetValue("On"), OrvErrorType(OrvErrorInvalidValue));
    QCOMPARE(cam.feature("ReverseX")->SetValue(true), OrvErrorType(OrvErrorInvalidAccess));
    QCOMPARE(cam.feature("TriggerMode")->RunCommand(), OrvErrorType(OrvErrorWrongType));
    QCOMPARE(cam.journal(), (QStringList{"Width=50", "Width=55 refused -7", "Width=110 refused -7",
                                         "Width=2 refused -4", "ExposureTime=5 refused -7", "TriggerMode=On refused -7",
                                         "ReverseX=true refused -6", "TriggerMode() refused -4"}));
    QCOMPARE(cam.value("Width"), QString("50"));

    // Direct settings leave no trace in the journal.
    cam.set("Width", 70);
    cam.clearJournal();
    QCOMPARE(cam.value("Width"), QString("70"));
    QVERIFY(cam.journal().isEmpty());
}

void tst_TestCamera::faultsOnceOrAlways()
{
    TestCamera cam;
    cam.addInt("Width", 30);
    const auto width = cam.feature("Width");
    long long value = 0;

    cam.fail("Width", Op::GetInt, OrvErrorTimeout, 1);
    QCOMPARE(width->GetValue(value), OrvErrorType(OrvErrorTimeout));
    QCOMPARE(value, 0LL); // outputs untouched on failure
    QCOMPARE(width->GetValue(value), OrvErrorType(OrvErrorSuccess));
    QCOMPARE(value, 30LL);

    cam.fail("Width", Op::GetInt, OrvErrorTimeout);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(width->GetValue(value), OrvErrorType(OrvErrorTimeout));
    QCOMPARE(cam.calls("Width", Op::GetInt), 5);
    cam.clearFaults();
    QCOMPARE(width->GetValue(value), OrvErrorType(OrvErrorSuccess));

    // A refused write is counted and journaled but changes nothing.
    cam.fail("Width", Op::SetInt, OrvErrorDeviceLost, 1);
    QCOMPARE(width->SetValue(40LL), OrvErrorType(OrvErrorDeviceLost));
    QCOMPARE(cam.value("Width"), QString("30"));
    QCOMPARE(cam.journal(), QStringList{"Width=40 refused -9"});
}

void tst_TestCamera::observers()
{
    TestCamera cam;
    cam.addEnum("LineSelector", {"Line0", "Line1"}, "Line0");
    cam.addEnum("LineSource", {"Off", "On"}, "Off").selectedBy("LineSelector").setAt("Line1", "On");
    cam.addEnum("LineMode", {"Input"}, "Input").selectedBy("LineSelector");
    auto observer = std::make_shared<CountingObserver>();
    for (const char* name : {"LineSelector", "LineSource", "LineMode"})
        QCOMPARE(cam.feature(name)->RegisterObserver(observer), OrvErrorType(OrvErrorSuccess));
    QCOMPARE(cam.feature("LineSource")->RegisterObserver(observer), OrvErrorType(OrvErrorInvalidCall));
    QCOMPARE(cam.observerCount("LineSource"), 1);

    // The selector and the dependents whose value changed with it (not LineMode).
    QCOMPARE(cam.feature("LineSelector")->SetValue("Line1"), OrvErrorType(OrvErrorSuccess));
    cam.notify("LineMode");
    cam.notify("Missing");
    cam.waitForNotifications();
    QCOMPARE(observer->names, (QStringList{"LineSelector", "LineSource", "LineMode"}));

    QCOMPARE(cam.feature("LineMode")->UnregisterObserver(observer), OrvErrorType(OrvErrorSuccess));
    QCOMPARE(cam.feature("LineMode")->UnregisterObserver(observer), OrvErrorType(OrvErrorInvalidCall));
    cam.notify("LineMode");
    cam.waitForNotifications();
    QCOMPARE(observer->names.size(), 3);
    QCOMPARE(cam.observerCount("LineMode"), 0);
}

void tst_TestCamera::handlesOutliveCamera()
{
    OrvCPP::shared_ptr<OrvCPP::Feature> feature;
    {
        TestCamera cam;
        cam.addInt("Width", 30);
        feature = cam.feature("Width");
        QVERIFY(!cam.feature("Missing"));
    }
    std::string name;
    QCOMPARE(feature->GetName(name), OrvErrorType(OrvErrorDeviceLost));
    QCOMPARE(feature->SetValue(1LL), OrvErrorType(OrvErrorDeviceLost));
}

QTEST_GUILESS_MAIN(tst_TestCamera)
#include "tst_TestCamera.moc"
