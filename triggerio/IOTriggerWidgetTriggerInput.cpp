#include "IOTriggerWidget.h"
#include "ui_IOTriggerWidget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDebug>
#include <QGridLayout>
#include <QGroupBox>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QSpacerItem>
#include <QSpinBox>

#include <climits>
#include <cmath>

namespace
{

// Numbers of the camera as spin box values: truncated toward zero, saturated
// at the 32-bit limits.
int toSpinValue(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= static_cast<double>(INT_MAX))
        return INT_MAX;
    if (value <= static_cast<double>(INT_MIN))
        return INT_MIN;
    return static_cast<int>(value);
}

// A quick setting button: its pictogram comes from the host's image folder
// (no picture when the host has not registered one), 28 pixels high.
QPushButton* createQuickButton(const QString& text, const QString& imagePath)
{
    QPushButton* button = new QPushButton(text);
    QIcon icon;
    icon.addFile(imagePath, QSize(), QIcon::Normal, QIcon::Off);
    button->setIcon(icon);
    button->setMinimumHeight(28);
    button->setMaximumHeight(28);
    const int h = button->height();
    button->setIconSize(QSize(2 * h, static_cast<int>(1.5 * h)));
    return button;
}

QComboBox* createCombo()
{
    QComboBox* combo = new QComboBox;
    combo->setMinimumSize(90, 25);
    return combo;
}

} // namespace

void IOTriggerWidget::createTriggerInput()
{
    // Cameras that route input lines to the trigger need more room.
    if (m_pFeatureManager->GetAvailableEnumEntries("TriggerSource").contains("InputLines"))
    {
        ui->gb_TriggerInput->setMinimumHeight(470);
        ui->gb_TriggerInput->setMaximumHeight(470);
    }

    createTriggerControls();
    createTriggerGroup();
    createAcquisitionGroup();
    createQuickSettingsGroup();

    m_pButtonSWTrigger->setEnabled(false);

    // First fill, before any signal is connected. The trigger source is read
    // twice: once before and once after the acquisition settings.
    updateTriggerSource();
    updateTriggerActivation();
    updateTriggerMode();
    updateAcquisitionMode();
    updateAcquisitionFrameCount();
    updateTriggerSource();
    updateTriggerSelector();

    if (m_pFeatureManager->GetFeatureName(QStringList() << "LineRouting") == "LineRouting")
        initLineRouting();
    initExposure();
    connectTriggerInput();
}

void IOTriggerWidget::createTriggerControls()
{
    m_pLabelTriggerSource = new QLabel(tr("Source:"));
    m_pLabelTriggerActivation = new QLabel(tr("Activ.:"));
    m_pLabelTriggerSelector = new QLabel(tr("Selector:"));
    m_pLabelTriggerMode = new QLabel(tr("Mode:"));

    m_pComboTriggerSource = createCombo();
    m_pComboTriggerActivation = createCombo();
    m_pComboTriggerSelector = createCombo();
    m_pComboTriggerMode = createCombo();

    // Exposure auto and exposure mode exclude each other; exposure auto wins.
    if (m_pFeatureManager->GetAvailableEnumEntries("ExposureAuto").contains("other"))
        m_pComboExposureAuto = createCombo();
    else if (m_pFeatureManager->GetAvailableEnumEntries("ExposureMode").contains("Timed"))
        m_pComboExposureMode = createCombo();

    m_pLabelAcquisitionMode = new QLabel(tr("Mode:"));
    m_pComboAcquisitionMode = createCombo();
    m_pLabelFrameCount = new QLabel(tr("FrameCount:"));
    m_pSpinAcquisitionFrameCount = new QSpinBox;

    m_pButtonSWTrigger = new QPushButton(tr("SW Trigger"));
    m_pButtonSWTrigger->setMinimumSize(90, 25);
    m_pButtonSWTrigger->setMaximumHeight(25);

    m_pButtonEdge = createQuickButton(tr("Edge"), ":/OrvViewer/Images/triggering_edge_256.png");
    m_pButtonLevel = createQuickButton(tr("Level"), ":/OrvViewer/Images/triggering_level_256.png");
    m_pButtonBulk = createQuickButton(tr("Bulk"), ":/OrvViewer/Images/triggering_bulk_256.png");

    if (m_pFeatureManager->GetFeatureName(QStringList() << "LineRouting") == "LineRouting")
    {
        m_pComboInputLineSelector = createCombo();
        m_pLabelInputLineSelector = new QLabel(tr("Line Sel.:"));
        m_pCBLineRouting = new QCheckBox;
        m_pLabelLineRouting = new QLabel(tr("Rout.:"));
    }

    // The camera is asked again, with the same test as for the combo boxes.
    if (m_pFeatureManager->GetAvailableEnumEntries("ExposureAuto").contains("other"))
        m_pLabelExposureAuto = new QLabel("Exp. Auto:");
    else if (m_pFeatureManager->GetAvailableEnumEntries("ExposureMode").contains("Timed"))
        m_pLabelExposureMode = new QLabel("Exp. Mode:");
}

void IOTriggerWidget::createTriggerGroup()
{
    m_pGroupTrigger = new QGroupBox(tr("Trigger"));
    m_pGroupTrigger->setFixedHeight(m_pCBLineRouting ? 220 : 170);
    m_pGroupTrigger->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_pGridTrigger = new QGridLayout;
    m_pGridTrigger->addWidget(m_pLabelTriggerSource, 0, 1, 1, 2, Qt::AlignRight);
    m_pGridTrigger->addWidget(m_pComboTriggerSource, 0, 3, 1, 2);
    m_pGridTrigger->addWidget(m_pLabelTriggerActivation, 0, 5, 1, 2, Qt::AlignRight);
    m_pGridTrigger->addWidget(m_pComboTriggerActivation, 0, 7, 1, 2);
    // The spacers only give their rows a height of 10 pixels.
    m_pGridTrigger->addItem(new QSpacerItem(1, 10, QSizePolicy::Minimum, QSizePolicy::Minimum), 1, 1, 1, 0);
    m_pGridTrigger->addWidget(m_pLabelTriggerSelector, 2, 1, 1, 2, Qt::AlignRight);
    m_pGridTrigger->addWidget(m_pComboTriggerSelector, 2, 3, 1, 2);
    m_pGridTrigger->addWidget(m_pLabelTriggerMode, 2, 5, 1, 2, Qt::AlignRight);
    m_pGridTrigger->addWidget(m_pComboTriggerMode, 2, 7, 1, 2, Qt::AlignCenter);
    m_pGridTrigger->addItem(new QSpacerItem(1, 10, QSizePolicy::Minimum, QSizePolicy::Minimum), 3, 1, 1, 0);
    if (m_pCBLineRouting)
    {
        m_pGridTrigger->addWidget(m_pLabelInputLineSelector, 4, 1, 1, 2, Qt::AlignRight);
        m_pGridTrigger->addWidget(m_pComboInputLineSelector, 4, 3, 1, 2);
        m_pGridTrigger->addWidget(m_pLabelLineRouting, 4, 5, 1, 2, Qt::AlignRight);
        m_pGridTrigger->addWidget(m_pCBLineRouting, 4, 7, 1, 2, Qt::AlignCenter);
        m_pGridTrigger->addItem(new QSpacerItem(1, 10, QSizePolicy::Minimum, QSizePolicy::Minimum), 5, 1, 1, 0);
        m_pGridTrigger->addWidget(m_pButtonSWTrigger, 6, 3, 1, 5, Qt::AlignCenter);
    }
    else
    {
        m_pGridTrigger->addWidget(m_pButtonSWTrigger, 4, 3, 1, 5, Qt::AlignCenter);
    }
    m_pGroupTrigger->setLayout(m_pGridTrigger);
    ui->grid_TriggerInput->addWidget(m_pGroupTrigger, 0, 1, 1, 9, Qt::Alignment());
}

void IOTriggerWidget::createAcquisitionGroup()
{
    m_pGroupAcquisition = new QGroupBox(tr("Acquisition"));
    m_pGroupAcquisition->setFixedHeight(125);
    m_pGroupAcquisition->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    QGridLayout* grid = new QGridLayout;
    grid->addWidget(m_pLabelAcquisitionMode, 0, 1, 1, 2, Qt::AlignRight);
    grid->addWidget(m_pComboAcquisitionMode, 0, 3, 1, 2);
    grid->addWidget(m_pLabelFrameCount, 0, 5, 1, 2, Qt::AlignRight);
    grid->addWidget(m_pSpinAcquisitionFrameCount, 0, 7, 1, 2, Qt::AlignCenter);
    // Row 1 holds whichever exposure control the camera has, if any.
    if (QLabel* exposureLabel = m_pLabelExposureMode ? m_pLabelExposureMode : m_pLabelExposureAuto)
        grid->addWidget(exposureLabel, 1, 1, 1, 2, Qt::AlignRight);
    if (QComboBox* exposureCombo = m_pComboExposureMode ? m_pComboExposureMode : m_pComboExposureAuto)
        grid->addWidget(exposureCombo, 1, 3, 1, 2);
    m_pGroupAcquisition->setLayout(grid);
    ui->grid_TriggerInput->addWidget(m_pGroupAcquisition, 2, 1, 1, 9, Qt::Alignment());
}

void IOTriggerWidget::createQuickSettingsGroup()
{
    // Columns 3 and 7 stay empty as gaps.
    m_pGroupQuickSettings = new QGroupBox(tr("Quick Settings: Trigger Mode"));
    m_pGroupQuickSettings->setFixedHeight(75);
    m_pGroupQuickSettings->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    QGridLayout* grid = new QGridLayout;
    grid->addWidget(m_pButtonEdge, 0, 0, 1, 3, Qt::Alignment());
    grid->addWidget(m_pButtonLevel, 0, 4, 1, 3, Qt::Alignment());
    grid->addWidget(m_pButtonBulk, 0, 8, 1, 3, Qt::Alignment());
    m_pGroupQuickSettings->setLayout(grid);
    ui->grid_TriggerInput->addWidget(m_pGroupQuickSettings, 3, 1, 1, 9, Qt::Alignment());
}

void IOTriggerWidget::initLineRouting()
{
    updateLineSelector();
    m_OutsIndex = DetermineOutsIndex();
    // Now without the output lines.
    updateLineSelector();
    updateLineRouting();
    connect(m_pComboInputLineSelector, SIGNAL(currentIndexChanged(QString)), this,
            SLOT(OnComboInputLineSelectorChanged(QString)));
    connect(m_pCBLineRouting, SIGNAL(stateChanged(int)), this, SLOT(OnCBLineRoutingChanged(int)));
    // With the signals live: the camera starts on "Line0" where it has it, else "Line1".
    SetComboBoxValue("Line1", m_pComboInputLineSelector);
    SetComboBoxValue("Line0", m_pComboInputLineSelector);
}

void IOTriggerWidget::initExposure()
{
    if (m_pComboExposureMode)
    {
        updateExposureMode();
        connect(m_pComboExposureMode, SIGNAL(currentIndexChanged(QString)), this,
                SLOT(OnComboExposureModeChanged(QString)));
    }
    if (m_pComboExposureAuto)
    {
        updateExposureAuto();
        connect(m_pComboExposureAuto, SIGNAL(currentIndexChanged(QString)), this,
                SLOT(OnComboExposureAutoChanged(QString)));
    }
}

void IOTriggerWidget::connectTriggerInput()
{
    connect(m_pComboTriggerSource, SIGNAL(currentIndexChanged(QString)), this,
            SLOT(OnComboTriggerSourceChanged(QString)));
    connect(m_pComboTriggerActivation, SIGNAL(currentIndexChanged(QString)), this,
            SLOT(OnComboTriggerActivationChanged(QString)));
    connect(m_pComboTriggerSelector, SIGNAL(currentIndexChanged(QString)), this,
            SLOT(OnComboTriggerSelectorChanged(QString)));
    connect(m_pComboTriggerMode, SIGNAL(currentIndexChanged(QString)), this, SLOT(OnComboTriggerModeChanged(QString)));
    connect(m_pComboAcquisitionMode, SIGNAL(currentIndexChanged(QString)), this,
            SLOT(OnComboAcquisitionModeChanged(QString)));
    connect(m_pSpinAcquisitionFrameCount, SIGNAL(valueChanged(int)), this,
            SLOT(OnSpinAcquisitionFrameCountChanged(int)));
    connect(m_pButtonSWTrigger, SIGNAL(clicked()), this, SLOT(OnSWTrigger()));
    connect(m_pButtonEdge, SIGNAL(clicked()), this, SLOT(OnEdgeMode()));
    connect(m_pButtonLevel, SIGNAL(clicked()), this, SLOT(OnLevelMode()));
    connect(m_pButtonBulk, SIGNAL(clicked()), this, SLOT(OnBulkMode()));
}

// ---------------------------------------------------------------- refresh

void IOTriggerWidget::updateTriggerSource()
{
    updateComboBox("TriggerSource", m_pComboTriggerSource, false);
    // The software trigger is offered only while the trigger listens to software.
    const QString source = m_pComboTriggerSource->currentText();
    m_pButtonSWTrigger->setEnabled(source == "Software" || source.contains("SoftwareSignal"));
    if (m_pComboTriggerMode)
        updateComboBox("TriggerMode", m_pComboTriggerMode, false);
}

void IOTriggerWidget::updateTriggerActivation()
{
    updateComboBox("TriggerActivation", m_pComboTriggerActivation, false);
}

void IOTriggerWidget::updateTriggerMode()
{
    updateComboBox("TriggerMode", m_pComboTriggerMode, false);
}

void IOTriggerWidget::updateTriggerSelector()
{
    // A camera with a single selector left moves to it; with more the user chooses.
    const QStringList entries = m_pFeatureManager->GetAvailableEnumEntries("TriggerSelector");
    const QString current = m_pFeatureManager->GetStringValue("TriggerSelector");
    if (!entries.contains(current) && entries.size() == 1)
        m_pFeatureManager->SetValue("TriggerSelector", entries.first());
    updateComboBox("TriggerSelector", m_pComboTriggerSelector, false);
}

void IOTriggerWidget::updateAcquisitionFrameCount()
{
    bool writable = false;
    double minimum = 0.0;
    double maximum = 0.0;
    double increment = 0.0;
    const double value = m_pFeatureManager->GetValueIsWritableRangeIncrement("AcquisitionFrameCount", &writable,
                                                                             &minimum, &maximum, &increment);
    m_pSpinAcquisitionFrameCount->setRange(toSpinValue(minimum), toSpinValue(maximum));
    m_pSpinAcquisitionFrameCount->setSingleStep(toSpinValue(increment));
    m_pSpinAcquisitionFrameCount->setValue(toSpinValue(value));
    // The frame count matters only in the acquisition modes that make it writable.
    m_pSpinAcquisitionFrameCount->setVisible(writable);
    m_pLabelFrameCount->setVisible(writable);
}

void IOTriggerWidget::updateAcquisitionMode()
{
    const bool writable = updateComboBox("AcquisitionMode", m_pComboAcquisitionMode, false);
    // The presets need a writable acquisition mode.
    SetQuickButtonsDisabled(!writable);
}

void IOTriggerWidget::updateLineSelector()
{
    if (!m_pComboInputLineSelector)
        return;
    updateComboBox("LineSelector", m_pComboInputLineSelector, false);
    const QString current = m_pComboInputLineSelector->currentText();

    // Output lines are no trigger inputs. Removing from the back keeps the
    // remaining indices valid.
    for (int i = m_OutsIndex.size() - 1; i >= 0; --i)
    {
        if (m_pComboInputLineSelector->count() > m_OutsIndex.at(i))
            m_pComboInputLineSelector->removeItem(m_OutsIndex.at(i));
    }

    for (int j = 0; j < m_pComboInputLineSelector->count(); ++j)
    {
        if (QString::fromLatin1(m_pComboInputLineSelector->itemText(j).toLatin1()) == current)
            m_pComboInputLineSelector->setCurrentIndex(j);
    }
}

void IOTriggerWidget::updateLineRouting()
{
    if (!m_pCBLineRouting)
        return;
    m_pCBLineRouting->setChecked(m_pFeatureManager->GetStringValue("LineRouting") == "Trigger");
    m_pCBLineRouting->setEnabled(m_pFeatureManager->GetIsWritable("LineRouting"));
}

void IOTriggerWidget::updateExposureMode()
{
    if (!m_pComboExposureMode)
        return;
    const bool writable = updateComboBox("ExposureMode", m_pComboExposureMode, false);
    // A read-only exposure mode means the camera acquires: say so.
    if (ui->gb_TriggerInput->isEnabled())
    {
        ui->l_notAcquireHint->setVisible(!writable);
        ui->l_notAcquireHint->update();
        ui->l_notAcquireHint->repaint();
    }
    update();
    repaint();
}

void IOTriggerWidget::updateExposureAuto()
{
    updateComboBox("ExposureAuto", m_pComboExposureAuto, false);
}

void IOTriggerWidget::SetComboBoxValue(QString value, QComboBox* comboBox)
{
    // The last matching item wins.
    int found = -1;
    for (int i = 0; i < comboBox->count(); ++i)
    {
        if (comboBox->itemText(i) == value)
            found = i;
    }
    if (found >= 0)
        comboBox->setCurrentIndex(found);
}

QString IOTriggerWidget::GetFirstInput()
{
    QString result;
    const QStringList entries = m_pFeatureManager->GetAvailableEnumEntries("LineSelector");
    const Selector selector = lineSelector();
    walkSelector(
        selector, entries,
        {Restore::AfterEachLine, Restore::OnFailure, "GetFirstInput", "Error: SetValue(LineSelector) retValue == ''"},
        [&](int i, bool selected)
        {
            if (selected && m_pFeatureManager->GetStringValue("LineMode") == "Input" && result.isEmpty())
            {
                // Found: the camera stays on this line.
                result = entries.at(i);
                return false;
            }
            return true;
        });
    return result;
}

// ---------------------------------------------------------------- edits

void IOTriggerWidget::OnComboTriggerSourceChanged(QString value)
{
    OnComboChanged("TriggerSource", value);
}

void IOTriggerWidget::OnComboTriggerActivationChanged(QString value)
{
    OnComboChanged("TriggerActivation", value);
}

void IOTriggerWidget::OnComboTriggerSelectorChanged(QString value)
{
    // On line-routing cameras an active trigger moves with the selector: off for
    // the old selector, on for the new one (both through the mode combo box).
    const bool wasOn = m_pComboTriggerMode->currentText() == "On";
    if (m_pComboInputLineSelector && wasOn)
        SetComboBoxValue("Off", m_pComboTriggerMode);
    OnComboChanged("TriggerSelector", value);
    if (m_pComboInputLineSelector && wasOn)
        SetComboBoxValue("On", m_pComboTriggerMode);
}

void IOTriggerWidget::OnComboAcquisitionModeChanged(QString value)
{
    OnComboChanged("AcquisitionMode", value);
}

void IOTriggerWidget::OnComboInputLineSelectorChanged(QString value)
{
    // The routing moves with the line: off for the old line, on for the new one.
    const bool wasChecked = m_pCBLineRouting->isChecked();
    if (wasChecked)
        m_pCBLineRouting->setChecked(false);
    OnComboChanged("LineSelector", value);
    if (wasChecked)
        m_pCBLineRouting->setChecked(true);
}

void IOTriggerWidget::OnCBLineRoutingChanged(int state)
{
    m_pFeatureManager->SetValue("LineRouting", state < 1 ? QString("Off") : QString("Trigger"));
}

void IOTriggerWidget::OnComboExposureModeChanged(QString value)
{
    OnComboChanged("ExposureMode", value);
}

void IOTriggerWidget::OnComboExposureAutoChanged(QString value)
{
    OnComboChanged("ExposureAuto", value);
}

void IOTriggerWidget::OnComboTriggerModeChanged(QString value)
{
    m_pFeatureManager->SetValue("TriggerMode", value);
}

void IOTriggerWidget::OnSWTrigger()
{
    m_pFeatureManager->RunCommand("TriggerSoftware");
}

void IOTriggerWidget::OnSpinAcquisitionFrameCountChanged(int value)
{
    m_pFeatureManager->SetValue("AcquisitionFrameCount", static_cast<double>(value));
}
