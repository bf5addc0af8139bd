// First: it brings Aravis, which must come before Qt's keywords.
#include "FakeGigEServer.h"
#include "TabExtensionInterface.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPluginLoader>
#include <QtTest>

namespace
{

// Reads a feature straight from the device, past the tab and the backend's features.
QString deviceValue(GenICamCamera& camera, const char* feature)
{
    QString value;
    camera.withAravisDevice(
        [&](ArvDevice* device)
        {
            GError* error = nullptr;
            const char* text = arv_device_get_string_feature_value(device, feature, &error);
            if (text)
                value = QString::fromUtf8(text);
            g_clear_error(&error);
        });
    return value;
}

void setDeviceValue(GenICamCamera& camera, const char* feature, const QString& value)
{
    camera.withAravisDevice(
        [&](ArvDevice* device)
        { arv_device_set_string_feature_value(device, feature, value.toUtf8().constData(), nullptr); });
}

} // namespace

class tst_TabOverGigE : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void tabDrivesTheDevice_data();
    void tabDrivesTheDevice();

private:
    QPluginLoader m_loader{TRIGGERIO_PLUGIN_FILE};
};

void tst_TabOverGigE::initTestCase()
{
    if (FakeGigEServer::program().isEmpty())
        QSKIP("arv-fake-gv-camera-0.8 (Debian package aravis-tools) is not installed");
    QVERIFY2(m_loader.load(), qPrintable(m_loader.errorString()));
}

void tst_TabOverGigE::tabDrivesTheDevice_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("selector");
    QTest::addColumn<QString>("source");
    QTest::addColumn<QStringList>("outputs");
    QTest::newRow("line family") << "line-camera.xml"
                                 << "LineSelector"
                                 << "LineSource" << QStringList{"Line1"};
    QTest::newRow("sync-out family") << "syncout-camera.xml"
                                     << "SyncOutSelector"
                                     << "SyncOutSource" << QStringList{"SyncOut1", "SyncOut2", "SyncOut3"};
    QTest::newRow("line-routing family") << "routing-camera.xml"
                                         << "LineSelector"
                                         << "LineSource" << QStringList{"Line2", "Line3"};
}

void tst_TabOverGigE::tabDrivesTheDevice()
{
    QFETCH(QString, model);
    QFETCH(QString, selector);
    QFETCH(QString, source);
    QFETCH(QStringList, outputs);
    const QByteArray selectorName = selector.toLatin1();
    const QByteArray sourceName = source.toLatin1();

    FakeGigEServer server;
    GenICamCamera camera;
    QString error;
    QVERIFY2(server.startAndOpen(TRIGGERIO_CAMERAS_DIR "/" + model, camera, &error), qPrintable(error));
    GenICamCamera second; // the camera is ours: another controller is turned away
    QCOMPARE(second.open("127.0.0.1"), OrvErrorType(OrvErrorInvalidAccess));

    TabExtensionInterface* plugin = qobject_cast<TabExtensionInterface*>(m_loader.instance());
    QVERIFY(plugin);
    QWidget parent;
    QCOMPARE(plugin->get(camera.features(), parent, nullptr), 0);
    parent.show();

    // One row per output line of the model, labelled with the line's name.
    QGroupBox* outputGroup = parent.findChild<QGroupBox*>("gb_Output");
    QGridLayout* grid = parent.findChild<QGridLayout*>("grid_Output");
    QVERIFY(outputGroup && grid);
    auto rows = [grid]
    {
        QStringList names;
        for (int row = 1; row < grid->rowCount(); ++row)
        {
            QLayoutItem* item = grid->itemAtPosition(row, 0);
            QLabel* label = item ? qobject_cast<QLabel*>(item->widget()) : nullptr;
            QLayoutItem* source = grid->itemAtPosition(row, 1);
            if (label && source && qobject_cast<QComboBox*>(source->widget()))
                names << label->text().remove(':').trimmed();
        }
        return names;
    };
    QCOMPARE(rows(), outputs);

    // An edit of the first row's source reaches the device, and the selector is
    // back where it was.
    QPointer<QComboBox> sourceCombo = qobject_cast<QComboBox*>(grid->itemAtPosition(1, 1)->widget());
    QVERIFY(sourceCombo && sourceCombo->count() > 1);
    const QString selected = deviceValue(camera, selectorName);
    QVERIFY(!selected.isEmpty());
    const QString chosen = sourceCombo->itemText((sourceCombo->currentIndex() + 1) % sourceCombo->count());
    sourceCombo->setCurrentText(chosen);
    QCOMPARE(deviceValue(camera, selectorName), selected);
    setDeviceValue(camera, selectorName, outputs.first());
    QCOMPARE(deviceValue(camera, sourceName), chosen);
    setDeviceValue(camera, selectorName, selected);

    // A line switched in the Selectable Output group joins or leaves the output
    // rows within a few ticks: the camera reports the tab's own mode write.
    QGroupBox* selectable = parent.findChild<QGroupBox*>("gb_SelectOutput");
    if (QComboBox* mode = selectable->findChild<QComboBox*>())
    {
        QString line; // its label is the line's name and ": "
        for (QLabel* label : selectable->findChildren<QLabel*>())
            if (line.isEmpty() && label->text().endsWith(": ") && label->text().startsWith("Line"))
                line = label->text().remove(':').trimmed();
        QTest::qWait(1200); // a tick empties the changed list that the build left
        const bool output = mode->currentText() == "Output";
        mode->setCurrentText(output ? "Input" : "Output");
        QStringList expected = outputs;
        if (output)
            expected.removeAll(line);
        else
            expected << line;
        expected.sort();
        QTRY_COMPARE_WITH_TIMEOUT(rows(), expected, 5000);
    }

    // The server goes away mid-session: the tab stays alive and shows neutral values.
    server.stop();
    QWidget* tab = outputGroup->window() == &parent ? parent.layout()->itemAt(0)->widget() : nullptr;
    QVERIFY(tab);
    // Every observed feature reported changed: the next tick refreshes the whole
    // tab against the lost device.
    for (const char* name :
         {"TriggerActivation", "TriggerSource", "TriggerMode", "TriggerSelector", "AcquisitionMode", "LineRouting",
          "LineSelector", "LineSource", "SyncOutSource", "LineInverter", "SyncOutPolarity", "LineStatus",
          "SyncOutLevels", "UserOutputValue", "LineMode", "ExposureMode", "ExposureAuto"})
        QVERIFY(QMetaObject::invokeMethod(tab, "OnFeatureChanged", Q_ARG(QString, name), Q_ARG(QString, QString())));
    QGroupBox* triggerGroup = parent.findChild<QGroupBox*>("gb_TriggerInput");
    auto neutral = [triggerGroup]()
    {
        for (QComboBox* combo : triggerGroup->findChildren<QComboBox*>())
            if (combo->count() != 0 || combo->currentIndex() != -1)
                return false;
        return true;
    };
    QTRY_VERIFY_WITH_TIMEOUT(camera.isDeviceLost(), 10000);
    std::string text;
    QCOMPARE(camera.features()->first()->GetValue(text), OrvErrorType(OrvErrorDeviceLost));
    QTRY_VERIFY_WITH_TIMEOUT(neutral(), 5000);
    // Edits on a lost device harm nothing (rows may have been rebuilt: look them up afresh).
    for (QComboBox* combo : parent.findChildren<QComboBox*>())
        combo->setCurrentIndex(combo->count() - 1);
    QTest::qWait(1200); // another refresh tick on the lost device
    QVERIFY(neutral());
    QVERIFY(parent.isVisible());
}

QTEST_MAIN(tst_TabOverGigE)
#include "tst_TabOverGigE.moc"
