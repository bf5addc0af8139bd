#include "ReviewedRecord.h"
#include "TabAccess.h"
#include "TabCameras.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

#include <functional>

using TestCam::TestCamera;

// Every scenario on every camera family: the writes the camera receives, in
// order, and what the tab shows afterwards, compared with the reviewed record in
// tab-journals.txt.
class tst_TriggerIOTab : public QObject
{
    Q_OBJECT

private slots:
    void scenario_data();
    void scenario();

private:
    ReviewedRecord m_record{TRIGGERIO_TESTS_DIR "/triggerio/tab-journals.txt"};
};

namespace
{

using Action = std::function<void(TabAccess&, TestCamera&)>;

// Shown instead of the view; writes taken from the journal while a preset ran.
QStringList g_shown, g_taken;

// Picks the last entry of a combo box (a real change when it has two or more).
void pickLast(QComboBox* combo)
{
    if (combo && combo->count() > 1)
        combo->setCurrentIndex(combo->count() - 1);
}

void toggle(QCheckBox* box)
{
    if (box)
        box->setChecked(!box->isChecked());
}

QString show(QWidget* w)
{
    QString text;
    if (auto* combo = qobject_cast<QComboBox*>(w))
    {
        QStringList items;
        for (int i = 0; i < combo->count(); ++i)
            items << combo->itemText(i);
        text = combo->currentText() + " [" + items.join(",") + "]";
    }
    else if (auto* box = qobject_cast<QCheckBox*>(w))
        text = box->isChecked() ? "checked" : "unchecked";
    else if (auto* spin = qobject_cast<QSpinBox*>(w))
        text = QString("%1 (%2..%3)").arg(spin->value()).arg(spin->minimum()).arg(spin->maximum());
    else if (auto* label = qobject_cast<QLabel*>(w))
        text = label->text();
    else if (auto* edit = qobject_cast<QLineEdit*>(w))
        text = edit->text();
    return text + (w->isEnabled() ? "" : " disabled") + (w->isHidden() ? " hidden" : "");
}

// What the tab shows, control by control, and where the camera's selectors stand.
QStringList view(TabAccess& tab, TestCamera& cam)
{
    const QList<QPair<QString, QWidget*>> controls{{"trigger selector", tab.m_pComboTriggerSelector},
                                                   {"trigger source", tab.m_pComboTriggerSource},
                                                   {"activation", tab.m_pComboTriggerActivation},
                                                   {"trigger mode", tab.m_pComboTriggerMode},
                                                   {"acquisition", tab.m_pComboAcquisitionMode},
                                                   {"frame count", tab.m_pSpinAcquisitionFrameCount},
                                                   {"exposure mode", tab.m_pComboExposureMode},
                                                   {"exposure auto", tab.m_pComboExposureAuto},
                                                   {"input line", tab.m_pComboInputLineSelector},
                                                   {"routing", tab.m_pCBLineRouting},
                                                   {"edge", tab.m_pButtonEdge},
                                                   {"level", tab.m_pButtonLevel},
                                                   {"bulk", tab.m_pButtonBulk},
                                                   {"source caption", tab.m_pLabelOutSource},
                                                   {"invert caption", tab.m_pLabelOutInvert},
                                                   {"levels", tab.m_pEditSyncLevels},
                                                   {"hint", tab.findChild<QLabel*>("l_notAcquireHint")}};
    QStringList lines;
    for (const auto& control : controls)
        if (control.second)
            lines << "| " + control.first + ": " + show(control.second);
    for (int i = 0; i < tab.m_OutputRows.size(); ++i)
    {
        const OutputRow& row = *tab.m_OutputRows.at(i);
        QStringList cells{tab.m_Outputs.value(i), show(row.m_pComboSource.data()), show(row.m_pCBInvert.data()),
                          show(row.m_pCBStatus.data())};
        if (row.m_pComboUserOutSelector)
            cells << show(row.m_pComboUserOutSelector.data()) << show(row.m_pCBUserValue.data());
        lines << "| row " + cells.join(" / ");
    }
    for (QComboBox* combo : qAsConst(tab.m_OptionalOutCombos))
        lines << "| selectable: " + show(combo);
    lines << QString("| observers: %1").arg(cam.observerCount());
    for (const QString selector : {"LineSelector", "SyncOutSelector", "LineOutSelector", "UserOutputSelector"})
        if (cam.feature(selector))
            lines << "| camera " + selector + "=" + cam.value(selector);
    return lines;
}

// Values changed on the camera behind the tab's back, then one tick over the
// given names (every observed one when none is given): the tab shows them and
// writes nothing it is not meant to.
void cameraChanges(TabAccess& tab, TestCamera& cam, const QStringList& names = {})
{
    cam.set("TriggerSource", "Software");
    cam.set("TriggerActivation", "FallingEdge");
    cam.set("TriggerMode", "On");
    cam.set("AcquisitionMode", "MultiFrame");
    cam.set("AcquisitionFrameCount", 7);
    cam.set("ExposureMode", "TriggerWidth");
    cam.set("ExposureAuto", "other");
    cam.set("LineRouting", "Trigger", "Line0");
    cam.set("LineSource", "UserOutput1", "Line1");
    cam.set("LineSource", "UserOutput1", "Line3");
    cam.set("LineInverter", true, "Line3");
    cam.set("LineStatus", true, "Line1");
    cam.set("UserOutputValue", true, "UserOutput1");
    cam.set("SyncOutSource", "GPO", "SyncOut2");
    cam.set("SyncOutPolarity", "Invert", "SyncOut3");
    cam.set("LineOutPolarity", "Invert", "SyncOut2");
    cam.set("SyncOutLevels", 5);
    cam.set("LineOutLevels", 2);
    tab.refresh(names.isEmpty() ? tab.m_ObservedFeatures : names);
}

// A preset with a self-reposting queued call run at every event-loop pass (a zero
// timer would fire only at idle priority). With changes: the camera changes first,
// and a pass after a write is marked. Without: the camera refuses the preset's
// first source write, every trigger is on, and each pass reads the source and
// the mode back, as a tick does once the camera reports them.
Action presetWithPasses(QPushButton* TabAccess::*button, bool changes)
{
    return [button, changes](TabAccess& t, TestCamera& cam)
    {
        changes ? cameraChanges(t, cam) : cam.fail("TriggerSource", "SetString", OrvErrorInvalidAccess, 1);
        if (!changes)
            for (const char* selector : {"FrameStart", "AcquisitionStart"})
                cam.set("TriggerMode", "On", selector);
        QObject context; // its pending call goes with it
        std::function<void()> pass = [&]
        {
            if (!changes)
                t.refresh({"TriggerSource", "TriggerMode"});
            else if (!(g_taken += cam.takeJournal()).isEmpty() && g_taken.last() != "(events)")
                g_taken << "(events)";
            QMetaObject::invokeMethod(&context, pass, Qt::QueuedConnection);
        };
        QMetaObject::invokeMethod(&context, pass, Qt::QueuedConnection);
        (t.*button)->click();
    };
}

// The camera changes (the trigger and line selectors and the list of user
// outputs too), then a tick on one name: what its refresh changed in the view.
Action refreshOnly(const QString& name)
{
    return [name](TabAccess& t, TestCamera& cam)
    {
        const QStringList before = view(t, cam);
        cam.set("TriggerSelector", "AcquisitionStart");
        cam.set("LineSelector", "Line2");
        cam.fail("UserOutputSelector", "GetValues", OrvErrorTimeout);
        cameraChanges(t, cam, {name});
        for (const QString& line : view(t, cam))
            if (!before.contains(line))
                g_shown << line;
        g_shown << "| all else as before";
    };
}

// A line switched to an output (the outputs rebuilt), then the text and size
// limits of every widget in the tab (not the combo boxes' pop-ups, nor Qt's
// inner widgets).
void layout(TabAccess& t, TestCamera& cam)
{
    cam.set("LineSource", "Direct", "Line2"); // its status box editable once it is an output
    pickLast(t.m_OptionalOutCombos.value(0));
    t.refresh({"LineMode"});
    for (QWidget* w : t.findChildren<QWidget*>(QRegularExpression("^(?!qt_)")))
        if (w->window() == &t)
            g_shown << QString::asprintf("| %s %s %dx%d..%dx%d icon %dx%d", w->metaObject()->className(),
                                         qPrintable(show(w)), w->minimumWidth(), w->minimumHeight(), w->maximumWidth(),
                                         w->maximumHeight(), w->property("iconSize").toSize().width(),
                                         w->property("iconSize").toSize().height());
}

const QList<QPair<QString, Action>>& scenarios()
{
    static const QList<QPair<QString, Action>> list = []
    {
        QList<QPair<QString, Action>> rows{
            {"build", [](TabAccess&, TestCamera&) {}},
            {"camera changes", [](TabAccess& t, TestCamera& cam) { cameraChanges(t, cam); }},
            {"edge", [](TabAccess& t, TestCamera&) { t.m_pButtonEdge->click(); }},
            {"level", [](TabAccess& t, TestCamera&) { t.m_pButtonLevel->click(); }},
            {"bulk", [](TabAccess& t, TestCamera&) { t.m_pButtonBulk->click(); }},
            {"edge after camera changes", presetWithPasses(&TabAccess::m_pButtonEdge, true)},
            {"level after camera changes", presetWithPasses(&TabAccess::m_pButtonLevel, true)},
            {"bulk after camera changes", presetWithPasses(&TabAccess::m_pButtonBulk, true)},
            {"edge, source refused once", presetWithPasses(&TabAccess::m_pButtonEdge, false)},
            {"level, source refused once", presetWithPasses(&TabAccess::m_pButtonLevel, false)},
            {"bulk, source refused once", presetWithPasses(&TabAccess::m_pButtonBulk, false)},
            {"level after other picks",
             [](TabAccess& t, TestCamera&) { (pickLast(t.m_pComboInputLineSelector), t.m_pButtonLevel->click()); }},
            {"bulk after other picks", [](TabAccess& t, TestCamera&)
             { (pickLast(t.m_pComboTriggerSelector), pickLast(t.m_pComboExposureMode),
                pickLast(t.m_pComboInputLineSelector), t.m_pButtonBulk->click()); }},
            {"level then bulk",
             [](TabAccess& t, TestCamera&) { (t.m_pButtonLevel->click(), t.m_pButtonBulk->click()); }},
            {"sw trigger", [](TabAccess& t, TestCamera&) { t.m_pButtonSWTrigger->click(); }},
            {"trigger selector", [](TabAccess& t, TestCamera&) { pickLast(t.m_pComboTriggerSelector); }},
            {"trigger source", [](TabAccess& t, TestCamera&) { pickLast(t.m_pComboTriggerSource); }},
            {"trigger activation", [](TabAccess& t, TestCamera&) { pickLast(t.m_pComboTriggerActivation); }},
            {"trigger mode", [](TabAccess& t, TestCamera&) { pickLast(t.m_pComboTriggerMode); }},
            {"acquisition mode", [](TabAccess& t, TestCamera&) { pickLast(t.m_pComboAcquisitionMode); }},
            {"frame count", [](TabAccess& t, TestCamera&) { t.m_pSpinAcquisitionFrameCount->setValue(300); }},
            {"exposure", [](TabAccess& t, TestCamera&)
             { pickLast(t.m_pComboExposureMode ? t.m_pComboExposureMode : t.m_pComboExposureAuto); }},
            {"input line", [](TabAccess& t, TestCamera&) { pickLast(t.m_pComboInputLineSelector); }},
            {"routing", [](TabAccess& t, TestCamera&) { toggle(t.m_pCBLineRouting); }},
            {"edits after camera changes",
             [](TabAccess& t, TestCamera& cam)
             {
                 cameraChanges(t, cam);
                 pickLast(t.m_pComboInputLineSelector);
                 t.m_pButtonEdge->click(); // back to Line0
                 const QSharedPointer<OutputRow> first = t.m_OutputRows.first(), last = t.m_OutputRows.last();
                 first->m_pComboSource->setCurrentIndex(0); // the rows now differ
                 toggle(first->m_pCBUserValue.data());
                 for (QCheckBox* box : {last->m_pCBInvert.data(), last->m_pCBStatus.data()})
                 {
                     for (const char* selector : {"LineSelector", "SyncOutSelector", "LineOutSelector"})
                         cam.fail(selector, "SetString", OrvErrorInvalidAccess, 1); // the first row skipped
                     toggle(box);
                 }
             }},
            {"shared user value",
             [](TabAccess& t, TestCamera& cam)
             {
                 cameraChanges(t, cam);
                 cam.takeJournal();
                 QCheckBox* value = t.m_OutputRows.isEmpty() ? nullptr : t.m_OutputRows.first()->m_pCBUserValue.data();
                 toggle(value);
                 toggle(value);
             }},
            {"selectable output", [](TabAccess& t, TestCamera&) { pickLast(t.m_OptionalOutCombos.value(0)); }},
            {"refused writes",
             [](TabAccess& t, TestCamera& cam)
             {
                 for (const char* selector : {"LineSelector", "SyncOutSelector", "LineOutSelector"})
                     cam.fail(selector, "SetString", OrvErrorInvalidAccess, 3);
                 cam.fail("TriggerSource", "SetString", OrvErrorInvalidValue);
                 pickLast(t.m_pComboTriggerSource);
                 toggle(t.m_OutputRows.isEmpty() ? nullptr : t.m_OutputRows.first()->m_pCBInvert.data());
                 t.refresh(t.m_ObservedFeatures);
             }},
            {"streaming", [](TabAccess& t, TestCamera&) { t.camIsStreaming(true); }},
            {"layout", layout},
        };
        TestCamera cam;
        TabCameras::build(cam, "routing");
        for (const QString& name : TabAccess(cam.features(), nullptr).m_ObservedFeatures)
            rows.append({"refresh " + name, refreshOnly(name)});
        return rows;
    }();
    return list;
}

} // namespace

void tst_TriggerIOTab::scenario_data()
{
    QTest::addColumn<QString>("camera");
    QTest::addColumn<int>("index");
    for (const QString& camera : TabCameras::Names)
        for (int i = 0; i < scenarios().size(); ++i)
            QTest::newRow(qPrintable(camera + " / " + scenarios().at(i).first)) << camera << i;
}

void tst_TriggerIOTab::scenario()
{
    QFETCH(QString, camera);
    QFETCH(int, index);
    const QString name = camera + " / " + scenarios().at(index).first;

    TestCamera cam;
    TabCameras::build(cam, camera);
    QStringList lines;
    {
        TabAccess tab(cam.features(), nullptr);
        // Ticks come only from the scenario itself.
        tab.m_pUpdateTimer->stop();
        if (index > 0)
            cam.takeJournal();
        scenarios().at(index).second(tab, cam);
        for (const QString& write : std::exchange(g_taken, {}) + cam.takeJournal())
            lines << "> " + write;
        lines += g_shown.isEmpty() ? view(tab, cam) : std::exchange(g_shown, {});
    }
    QCOMPARE(lines, m_record.take(name, lines));
}

QTEST_MAIN(tst_TriggerIOTab)
#include "tst_TriggerIOTab.moc"
