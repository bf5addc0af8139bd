#ifndef IOTRIGGERWIDGET_H
#define IOTRIGGERWIDGET_H

#include "BaseTabPluginWidget.h"
#include "OutputRow.h"

#include <QList>
#include <QSharedPointer>
#include <QStringList>
#include <QVector>

#include <functional>
#include <memory>

class QCheckBox;
class QComboBox;
class QGridLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpacerItem;
class QSpinBox;

namespace Ui
{
class IOTriggerWidget;
}

// Steps of the quick settings (IOTriggerWidgetQuickSettings.cpp).
struct PresetStep;
struct QuickSetting;

// The "Trigger IO" tab: trigger input, acquisition, exposure and input line
// controls, quick trigger presets, output lines and selectable outputs of one
// camera. Edits reach the camera through the On... slots. Refreshes write too,
// though never a value the user did not see: they point the selectors at each
// line and put them back, and controls that a refresh fills while their
// signals are live write what they show back through their slots (the
// selectable-output mode combos write "LineMode", the status boxes of rebuilt
// output rows write "LineStatus").
//
// The class is split by section over several source files:
//   IOTriggerWidget.cpp                   construction, destruction, refresh dispatch, selector walks
//   IOTriggerWidgetStreamingLock.cpp      streaming lock and signal blocking
//   IOTriggerWidgetTriggerInput.cpp       trigger input controls, refreshes and edits
//   IOTriggerWidgetQuickSettings.cpp      Edge, Level and Bulk presets
//   IOTriggerWidgetOutputs.cpp            output rows: discovery, source, inversion, status
//   IOTriggerWidgetUserOutputs.cpp        user output values and sync levels
//   IOTriggerWidgetSelectableOutputs.cpp  lines switchable between input and output
class IOTriggerWidget : public BaseTabPluginWidget
{
    Q_OBJECT

public:
    IOTriggerWidget(const FeatureList& features, QWidget* parent);
    ~IOTriggerWidget() override;

    void updateInit() override;

    // Streaming lock
    void SetQuickButtonsDisabled(bool disabled);
    void SetConnectionsDisabled(bool disabled);

    // Trigger input section
    void createTriggerInput();
    void updateTriggerSource();
    void updateTriggerActivation();
    void updateTriggerMode();
    void updateTriggerSelector();
    void updateAcquisitionFrameCount();
    void updateAcquisitionMode();
    void updateLineSelector();
    void updateLineRouting();
    void updateExposureMode();
    void updateExposureAuto();
    void SetComboBoxValue(QString value, QComboBox* comboBox);
    QString GetFirstInput();

    // Output rows
    int GetOutputs(QStringList* outputs);
    QList<int> DetermineOutsIndex();
    void createOutputLabels();
    void createOutput();
    void updateOutSource();
    void updateOutInvert();
    void updateOutStatus();

    // User outputs and sync levels
    void updateSyncLevels();
    void updateUserOutSelector();
    void updateUserOutValue();
    void SetOnCBOutUserValueChanged(int row, int state);
    void OnCBOutUserValueChanged(int row, int state);

    // Selectable outputs
    int GetOptionalOutputs(QStringList* outputs);
    void createOptionalOutputs();
    void updateOptionalOut();

public slots:
    void OnComboTriggerSourceChanged(QString value);
    void OnComboTriggerActivationChanged(QString value);
    void OnComboTriggerSelectorChanged(QString value);
    void OnComboAcquisitionModeChanged(QString value);
    void OnComboInputLineSelectorChanged(QString value);
    void OnCBLineRoutingChanged(int state);
    void OnComboOutSourceChanged(QString value);
    void OnComboExposureModeChanged(QString value);
    void OnComboExposureAutoChanged(QString value);
    void OnComboChanged(QString featureName, QString currentVal);
    void OnComboTriggerModeChanged(QString value);
    void OnSWTrigger();
    void OnSpinAcquisitionFrameCountChanged(int value);
    void OnEdgeMode();
    void OnLevelMode();
    void OnBulkMode();
    void OnCBOutInvertChanged(int state);
    void OnCBOutStatusChanged(int state);
    void OnCBOutUserValueChanged1(int state);
    void OnCBOutUserValueChanged2(int state);
    void OnCBOutUserValueChanged3(int state);
    void OnCBOutUserValueChanged4(int state);
    void OnCBOutUserValueChanged5(int state);
    void OnComboOptionalOutChanged(QString value);
    void camIsStreaming(bool streaming);

protected:
    std::unique_ptr<Ui::IOTriggerWidget> ui;
    bool m_bUserOutputSelector = false;
    int m_nOptionalOutputs = 0;
    QComboBox* m_pComboTriggerSource = nullptr;
    QComboBox* m_pComboTriggerActivation = nullptr;
    QComboBox* m_pComboTriggerSelector = nullptr;
    QComboBox* m_pComboAcquisitionMode = nullptr;
    QComboBox* m_pComboTriggerMode = nullptr;
    QSpinBox* m_pSpinAcquisitionFrameCount = nullptr;
    QCheckBox* m_pCBLineRouting = nullptr;
    QComboBox* m_pComboInputLineSelector = nullptr;
    QComboBox* m_pComboExposureMode = nullptr;
    QComboBox* m_pComboExposureAuto = nullptr;
    QPushButton* m_pButtonSWTrigger = nullptr;
    QPushButton* m_pButtonEdge = nullptr;
    QPushButton* m_pButtonLevel = nullptr;
    QPushButton* m_pButtonBulk = nullptr;
    QLabel* m_pLabelTriggerSource = nullptr;
    QLabel* m_pLabelTriggerActivation = nullptr;
    QLabel* m_pLabelTriggerSelector = nullptr;
    QLabel* m_pLabelAcquisitionMode = nullptr;
    QLabel* m_pLabelTriggerMode = nullptr;
    QLabel* m_pLabelFrameCount = nullptr;
    QLabel* m_pLabelLineRouting = nullptr;
    QLabel* m_pLabelInputLineSelector = nullptr;
    QLabel* m_pLabelExposureMode = nullptr;
    QLabel* m_pLabelExposureAuto = nullptr;
    QGridLayout* m_pGridTrigger = nullptr;
    QGroupBox* m_pGroupTrigger = nullptr;
    QGroupBox* m_pGroupAcquisition = nullptr;
    QGroupBox* m_pGroupQuickSettings = nullptr;
    QVector<QSharedPointer<OutputRow>> m_OutputRows;
    QVector<QComboBox*> m_OptionalOutCombos;
    QVector<QSpacerItem*> m_Spacers;
    QLabel* m_pLabelOutSource = nullptr;
    QLabel* m_pLabelOutInvert = nullptr;
    QLabel* m_pLabelOutStatus = nullptr;
    QLabel* m_pLabelUserOutSelector = nullptr;
    QLabel* m_pLabelUserValue = nullptr;
    QLabel* m_pLabelSyncLevels = nullptr;
    QLineEdit* m_pEditSyncLevels = nullptr;
    QVector<QLabel*> m_OutLineLabels;
    QStringList m_OptionalOutputs;
    QList<int> m_OutsIndex;
    QStringList m_Outputs;

private:
    // Trigger input section, in the order of building
    void createTriggerControls();
    void createTriggerGroup();
    void createAcquisitionGroup();
    void createQuickSettingsGroup();
    void initLineRouting();
    void initExposure();
    void connectTriggerInput();

    // Output rows
    void createOutputRow(int i);
    void createSyncLevelsRow(int gridRow);
    // A row's status box can be edited when its line carries its plain state
    // ("Direct" for output lines, "GPO" for sync outputs) and that state is
    // writable; its user value box when a user output drives the line.
    bool carriesPlainState(const OutputRow& row, bool lineFamily) const;
    bool statusWritable(bool lineFamily) const;
    void enableStatusBox(const OutputRow& row, bool lineFamily) const;
    void enableUserValueBox(const OutputRow& row) const;

    // A selector feature the tab points at one line after another, and the
    // entry it held before.
    struct Selector
    {
        QString name;
        QString alt; // the camera's other name for it; empty when there is none
        QString saved;

        bool found() const
        {
            return !saved.isEmpty();
        }
        bool isLineSelector() const
        {
            return name == "LineSelector";
        }
    };

    // When a walk puts its selector back, and what it logs about that.
    struct Restore
    {
        enum When
        {
            AfterEachLine,
            AtEnd
        };
        enum Log
        {
            Never,
            OnFailure, // function and message when the write back returned an empty text
            Always     // function, message (if any) and the text the write back returned
        };
        When when;
        Log log;
        const char* function;
        const char* message;
    };

    Selector lineSelector() const;
    // "LineSelector" when it can be read, else the sync-out family's selector.
    Selector outputSelector() const;
    Selector userOutputSelector() const;
    QString select(const Selector& selector, const QString& entry) const;
    void restoreSelector(const Selector& selector, const Restore& restore) const;
    // Points the selector at each entry in turn and calls visit(index, selected),
    // selected telling whether the selector write succeeded. When visit returns
    // false the walk stops at once and the selector stays on that entry.
    void walkSelector(const Selector& selector, const QStringList& entries, const Restore& restore,
                      const std::function<bool(int, bool)>& visit);
    // The selector entry of every output row.
    QStringList outputLines() const;
    // Numeric writes are judged by a one-character text made from the returned
    // number; such a text is never empty.
    static QString numericResultText(double value);

    void rebuildOutputs();

    // Runs the variant of a preset that fits the camera; false when the tab was
    // deleted meanwhile (then no member may be touched).
    bool runQuickSetting(const QuickSetting& setting);
    bool runPresetStep(const PresetStep& presetStep, const char* value);
};

#endif
