// First: it brings Aravis, which must come before Qt's keywords.
#include "FakeGigEServer.h"
#include "TabExtensionInterface.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPluginLoader>
#include <QtTest>

#include <algorithm>

namespace
{

// Writes (if a value is given) and reads a feature straight on the device.
QString deviceValue(GenICamCamera& camera, const QString& feature, const QString& value = QString())
{
    QString text;
    camera.withAravisDevice(
        [&](ArvDevice* device)
        {
            if (!value.isNull())
                arv_device_set_string_feature_value(device, qPrintable(feature), qPrintable(value), nullptr);
            text = QString::fromUtf8(arv_device_get_string_feature_value(device, qPrintable(feature), nullptr));
        });
    return text;
}

} // namespace

class tst_TabOverGigE : public QObject
{
    Q_OBJECT

    QPluginLoader m_loader{TRIGGERIO_PLUGIN_FILE};

private slots:
    void initTestCase()
    {
        if (FakeGigEServer::program().isEmpty())
            QSKIP("arv-fake-gv-camera-0.8 (Debian package aravis-tools) is not installed");
        QVERIFY2(m_loader.load(), qPrintable(m_loader.errorString()));
    }

    void tabDrivesTheDevice_data()
    {
        QTest::addColumn<QString>("model");
        QTest::addColumn<QStringList>("outputs");
        QTest::addColumn<QString>("selector"); // and "...Source" beside it
        QTest::newRow("line family") << "line-camera.xml" << QStringList{"Line1"} << QString("Line");
        QTest::newRow("sync-out family") << "syncout-camera.xml" << QStringList{"SyncOut1", "SyncOut2", "SyncOut3"}
                                         << QString("SyncOut");
        QTest::newRow("line-routing family")
            << "routing-camera.xml" << QStringList{"Line2", "Line3"} << QString("Line");
    }

    void tabDrivesTheDevice()
    {
        QFETCH(QString, model);
        QFETCH(QString, selector);
        QFETCH(QStringList, outputs);
        const QString source = selector + "Source";
        selector += "Selector";

        FakeGigEServer server;
        GenICamCamera camera;
        QString error;
        QVERIFY2(server.startAndOpen(TRIGGERIO_CAMERAS_DIR "/" + model, camera, &error), qPrintable(error));
        GenICamCamera second; // the camera is ours: another controller is turned away
        QCOMPARE(second.open("127.0.0.1"), OrvErrorType(OrvErrorInvalidAccess));

        QWidget parent;
        QCOMPARE(qobject_cast<TabExtensionInterface*>(m_loader.instance())->get(camera.features(), parent, nullptr), 0);
        parent.show();

        // One row per output line of the model, labelled with the line's name.
        QGridLayout* grid = parent.findChild<QGridLayout*>("grid_Output");
        QVERIFY(grid);
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
        const QString selected = deviceValue(camera, selector);
        QVERIFY(!selected.isEmpty());
        const QString chosen = sourceCombo->itemText((sourceCombo->currentIndex() + 1) % sourceCombo->count());
        sourceCombo->setCurrentText(chosen);
        QCOMPARE(deviceValue(camera, selector), selected);
        deviceValue(camera, selector, outputs.first());
        QCOMPARE(deviceValue(camera, source), chosen);
        deviceValue(camera, selector, selected);

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
        QWidget* tab = parent.layout()->itemAt(0)->widget();
        // Every observed feature reported changed: the next tick refreshes the whole
        // tab against the lost device.
        for (const char* name :
             {"TriggerActivation", "TriggerSource", "TriggerMode", "TriggerSelector", "AcquisitionMode", "LineRouting",
              "LineSelector", "LineSource", "SyncOutSource", "LineInverter", "SyncOutPolarity", "LineStatus",
              "SyncOutLevels", "UserOutputValue", "LineMode", "ExposureMode", "ExposureAuto"})
            QVERIFY(
                QMetaObject::invokeMethod(tab, "OnFeatureChanged", Q_ARG(QString, name), Q_ARG(QString, QString())));
        QGroupBox* triggerGroup = parent.findChild<QGroupBox*>("gb_TriggerInput");
        auto neutral = [triggerGroup]
        {
            const QList<QComboBox*> combos = triggerGroup->findChildren<QComboBox*>();
            return std::all_of(combos.begin(), combos.end(),
                               [](QComboBox* c) { return c->count() == 0 && c->currentIndex() == -1; });
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
    }
};

QTEST_MAIN(tst_TabOverGigE)
#include "tst_TabOverGigE.moc"
