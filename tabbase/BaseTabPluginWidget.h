#ifndef BASETABPLUGINWIDGET_H
#define BASETABPLUGINWIDGET_H

#include "FeatureList.h"
#include "FeatureManager.h"
#include "PluginFeatureObserver.h"

#include <QStringList>
#include <QWidget>

class QComboBox;
class QMutex;
class QTimer;
class QTranslator;

// Base of a tab page: collects the names of camera features reported changed,
// and once a second while visible hands them to updateInit() of the derived
// tab. The camera is never polled here; only reported names are refreshed.
class BaseTabPluginWidget : public QWidget
{
    Q_OBJECT

public:
    BaseTabPluginWidget(const FeatureList& features, QWidget* parent);
    ~BaseTabPluginWidget() override;

    // Refreshes the controls named in m_pChangedFeatures; called with m_pMutex held.
    virtual void updateInit() = 0;

    // Both return the camera's code of the last call made (0 = success).
    int RegisterFeatureObserver(bool markAllChanged);
    int UnRegisterFeatureObserver(bool ignoreNotRegistered);

    // Translator for "plugins/<baseName>_<locale>"; empty when no file was found.
    QTranslator* GetTranslator(QString baseName);

    // Fills the combo box with the feature's available entries, selects the
    // current one and enables it when writable; returns that writability.
    bool updateComboBox(QString featureName, QComboBox* comboBox, bool setToolTips);

    void pauseUpdateTimer();
    void continueUpdateTimer();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

signals:
    void resetFPS();

public slots:
    void updateTimer();
    void OnFeatureChanged(const QString& name, const QString& value);

protected:
    FeatureManager* m_pFeatureManager = nullptr;
    QStringList* m_pChangedFeatures = nullptr;
    QStringList m_ObservedFeatures;
    FeatureList m_pFeatures;
    QTimer* m_pUpdateTimer = nullptr;
    QMutex* m_pMutex = nullptr;
    OrvCPP::shared_ptr<PluginFeatureObserver> m_pFeatureObserver;

private:
    // Registers or removes the observer on every observed feature of the camera.
    int WalkObservedFeatures(bool registering, bool markAllChanged, bool ignoreNotRegistered);
};

#endif
