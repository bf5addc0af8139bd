#include "IOTriggerWidget.h"
#include "ui_IOTriggerWidget.h"

#include "TabExtensionInterface.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDebug>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpacerItem>
#include <QSpinBox>
#include <QTranslator>

IOTriggerWidget::IOTriggerWidget(const FeatureList& features, QWidget* parent)
    : BaseTabPluginWidget(features, parent)
    , ui(new Ui::IOTriggerWidget)
{
    // The tab serves cameras with sync output levels or with output lines.
    QString title;
    if (m_pFeatureManager->GetIsFeatureAvailable("SyncOutLevels", "LineOutLevels") ||
        m_pFeatureManager->GetIsFeatureAvailable("LineSelector"))
        title = tr("Trigger IO");

    // The accessible name doubles as the "constructed" flag for the destructor.
    if (parent)
        parent->setAccessibleName(title);
    setAccessibleName(title);
    if (title.isEmpty())
        throw TENotSupported("IOTriggerWidget", "Trigger functionality not available, widget not constructed");

    // The translator stays for the rest of the process, installed only when it
    // found a file.
    QTranslator* translator = GetTranslator("tabextensiontriggerio");
    if (!translator->isEmpty())
        QApplication::installTranslator(translator);

    m_bUserOutputSelector =
        m_pFeatureManager->GetFeatureName(QStringList() << "UserOutputSelector") == "UserOutputSelector";

    m_OptionalOutputs.clear();
    m_nOptionalOutputs = GetOptionalOutputs(&m_OptionalOutputs);

    // "UserOutputSelector" is left out on purpose: the tab moves it itself.
    m_ObservedFeatures << QStringList{
        "TriggerActivation", "TriggerSource",   "TriggerMode",   "TriggerSelector", "AcquisitionFrameCount",
        "AcquisitionMode",   "LineRouting",     "LineSelector",  "LineSource",      "SyncOutSource",
        "LineInverter",      "SyncOutPolarity", "LineStatus",    "SyncOutLevels",   "UserOutSelector",
        "UserOutputValue",   "LineMode",        "LineOutSource", "LineOutPolarity", "LineOutLevels",
        "ExposureMode",      "ExposureAuto"};

    ui->setupUi(this);
    ui->l_notAcquireHint->setStyleSheet("color : rgb(64,94,127);");
    ui->l_notAcquireHint->hide();

    createTriggerInput();
    createOutputLabels();
    createOutput();
    SetQuickButtonsDisabled(false);

    if (m_nOptionalOutputs < 1)
        ui->gb_SelectOutput->setVisible(false);
    else
        createOptionalOutputs();

    // Every observed feature counts as changed, so the first refresh fills everything.
    RegisterFeatureObserver(true);
}

IOTriggerWidget::~IOTriggerWidget()
{
    if (accessibleName().isEmpty())
        return;

    delete m_pComboTriggerSource;
    delete m_pComboTriggerActivation;
    delete m_pComboTriggerSelector;
    delete m_pComboAcquisitionMode;
    delete m_pComboTriggerMode;
    delete m_pSpinAcquisitionFrameCount;
    delete m_pCBLineRouting;
    delete m_pComboInputLineSelector;
    delete m_pComboExposureMode;
    delete m_pComboExposureAuto;
    delete m_pButtonSWTrigger;
    delete m_pButtonEdge;
    delete m_pButtonLevel;
    delete m_pButtonBulk;
    delete m_pLabelTriggerSource;
    delete m_pLabelTriggerActivation;
    delete m_pLabelTriggerSelector;
    delete m_pLabelAcquisitionMode;
    delete m_pLabelTriggerMode;
    delete m_pLabelFrameCount;
    delete m_pLabelLineRouting;
    delete m_pLabelInputLineSelector;
    delete m_pLabelExposureMode;
    delete m_pLabelExposureAuto;
    delete m_pGridTrigger;
    delete m_pGroupTrigger;
    delete m_pGroupAcquisition;
    delete m_pGroupQuickSettings;

    for (int i = m_OutLineLabels.size() - 1; i >= 0; --i)
        delete m_OutLineLabels.at(i);
    for (int i = m_Spacers.size() - 1; i >= 0; --i)
        delete m_Spacers.at(i);
    for (int i = m_OptionalOutCombos.size() - 1; i >= 0; --i)
        delete m_OptionalOutCombos.at(i);

    delete m_pLabelOutSource;
    delete m_pLabelOutInvert;
    delete m_pLabelOutStatus;
    delete m_pLabelUserOutSelector;
    delete m_pLabelUserValue;
    delete m_pLabelSyncLevels;
    delete m_pEditSyncLevels;
}

void IOTriggerWidget::updateInit()
{
    const QStringList& changed = *m_pChangedFeatures;

    // Each rule refreshes with the controls' signals blocked, so that filling a
    // control never writes back to the camera. Several rules may fire in one pass.
    auto refresh = [this](std::initializer_list<void (IOTriggerWidget::*)()> functions)
    {
        SetConnectionsDisabled(true);
        for (auto function : functions)
            (this->*function)();
        SetConnectionsDisabled(false);
    };

    if (changed.contains("TriggerSource"))
        refresh({&IOTriggerWidget::updateTriggerSource});
    if (changed.contains("TriggerActivation"))
        refresh({&IOTriggerWidget::updateTriggerActivation});
    if (changed.contains("TriggerMode"))
        refresh({&IOTriggerWidget::updateTriggerMode, &IOTriggerWidget::updateTriggerSelector,
                 &IOTriggerWidget::updateTriggerActivation});
    if (changed.contains("TriggerSelector"))
        refresh({&IOTriggerWidget::updateTriggerSelector});
    // This spelling never equals the observed "AcquisitionFrameCount": the frame
    // count is refreshed together with the acquisition mode below.
    if (changed.contains("AcquisitionFramecount"))
        refresh({&IOTriggerWidget::updateAcquisitionFrameCount});
    if (changed.contains("AcquisitionMode"))
        refresh({&IOTriggerWidget::updateAcquisitionMode, &IOTriggerWidget::updateAcquisitionFrameCount});
    if (changed.contains("LineSelector"))
        refresh({&IOTriggerWidget::updateLineSelector});
    if (changed.contains("LineRouting"))
        refresh({&IOTriggerWidget::updateLineRouting});
    if (changed.contains("ExposureMode"))
        refresh({&IOTriggerWidget::updateExposureMode});
    if (changed.contains("ExposureAuto"))
        refresh({&IOTriggerWidget::updateExposureAuto});
    if (changed.contains("LineSource") || changed.contains("SyncOutSource") || changed.contains("LineOutSource"))
        refresh({&IOTriggerWidget::updateOutSource});
    if (changed.contains("LineInverter") || changed.contains("SyncOutPolarity") || changed.contains("LineOutPolarity"))
        refresh({&IOTriggerWidget::updateOutInvert});
    if (changed.contains("LineStatus"))
        refresh({&IOTriggerWidget::updateOutStatus, &IOTriggerWidget::updateOutInvert});
    // "LineOutlevels" never equals the observed "LineOutLevels", so only a change
    // of "SyncOutLevels" refreshes the levels.
    if (changed.contains("SyncOutLevels") || changed.contains("LineOutlevels"))
        refresh({&IOTriggerWidget::updateSyncLevels});
    if (changed.contains("UserOutSelector"))
        refresh({&IOTriggerWidget::updateUserOutSelector});
    if (changed.contains("UserOutputValue"))
        refresh({&IOTriggerWidget::updateUserOutValue});
    if (changed.contains("LineMode") && !m_OptionalOutCombos.isEmpty())
        rebuildOutputs();
}

// A line switched between input and output: the Output group is built anew.
void IOTriggerWidget::rebuildOutputs()
{
    SetConnectionsDisabled(true);
    for (int i = m_OutLineLabels.size() - 1; i >= 0; --i)
    {
        QLabel* label = m_OutLineLabels.at(i);
        ui->grid_Output->removeWidget(label);
        m_OutLineLabels.remove(i);
        delete label;
    }
    for (int i = m_OutputRows.size() - 1; i >= 0; --i)
    {
        const QSharedPointer<OutputRow>& row = m_OutputRows.at(i);
        // A row without user outputs has no widgets in columns 4 and 5.
        for (QWidget* widget :
             {static_cast<QWidget*>(row->m_pComboSource.data()), static_cast<QWidget*>(row->m_pCBInvert.data()),
              static_cast<QWidget*>(row->m_pCBStatus.data()),
              static_cast<QWidget*>(row->m_pComboUserOutSelector.data()),
              static_cast<QWidget*>(row->m_pCBUserValue.data())})
        {
            if (widget)
                ui->grid_Output->removeWidget(widget);
        }
    }
    m_OutputRows.clear();
    createOutput();
    updateOptionalOut();
    SetConnectionsDisabled(false);
    for (const QSharedPointer<OutputRow>& row : qAsConst(m_OutputRows))
    {
        if (row->m_pComboSource)
            row->m_pComboSource->setMaximumWidth(16777215);
    }
    updateOutStatus();
}

void IOTriggerWidget::OnComboChanged(QString featureName, QString currentVal)
{
    m_pFeatureManager->SetValue(featureName, currentVal);
}

// ---------------------------------------------------------------- selector walks

IOTriggerWidget::Selector IOTriggerWidget::lineSelector() const
{
    return {"LineSelector", QString(), m_pFeatureManager->GetStringValue("LineSelector")};
}

IOTriggerWidget::Selector IOTriggerWidget::outputSelector() const
{
    Selector selector = lineSelector();
    if (!selector.found())
        selector = {"LineOutSelector", "SyncOutSelector",
                    m_pFeatureManager->GetStringValue("LineOutSelector", "SyncOutSelector")};
    return selector;
}

IOTriggerWidget::Selector IOTriggerWidget::userOutputSelector() const
{
    return {"UserOutputSelector", QString(), m_pFeatureManager->GetStringValue("UserOutputSelector")};
}

QString IOTriggerWidget::select(const Selector& selector, const QString& entry) const
{
    if (selector.alt.isEmpty())
        return m_pFeatureManager->SetValue(selector.name, entry);
    return m_pFeatureManager->SetValue(selector.name, selector.alt, entry);
}

void IOTriggerWidget::restoreSelector(const Selector& selector, const Restore& restore) const
{
    const QString result = select(selector, selector.saved);
    if (restore.log == Restore::Always)
    {
        QDebug debug = qDebug();
        debug << restore.function;
        if (restore.message)
            debug << restore.message;
        debug << result;
    }
    else if (restore.log == Restore::OnFailure && result.isEmpty())
    {
        qDebug() << restore.function << restore.message;
    }
}

void IOTriggerWidget::walkSelector(const Selector& selector, const QStringList& entries, const Restore& restore,
                                   const std::function<bool(int, bool)>& visit)
{
    for (int i = 0; i < entries.size(); ++i)
    {
        const bool selected = !select(selector, entries.at(i)).isEmpty();
        if (!visit(i, selected))
            return;
        if (restore.when == Restore::AfterEachLine)
            restoreSelector(selector, restore);
    }
    if (restore.when == Restore::AtEnd)
        restoreSelector(selector, restore);
}

QStringList IOTriggerWidget::outputLines() const
{
    QStringList lines;
    for (int i = 0; i < m_OutputRows.size(); ++i)
        lines << m_Outputs.value(i);
    return lines;
}
