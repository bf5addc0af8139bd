#include "BaseTabPluginWidget.h"

#include "TABMessageHandler.h"

#include <QComboBox>
#include <QDebug>
#include <QLocale>
#include <QMutex>
#include <QMutexLocker>
#include <QTimer>
#include <QTranslator>

#include <vector>

BaseTabPluginWidget::BaseTabPluginWidget(const FeatureList& features, QWidget* parent)
    : QWidget(parent)
{
    qInstallMessageHandler(TABMessageHandler);
    m_pFeatures = features;
    m_pFeatureManager = new FeatureManager(features);
    // The camera keeps copies; whoever lets go last, the object dies on this thread.
    m_pFeatureObserver = PluginFeatureObserver::create();
    // The observer emits on camera threads; the default connection queues the
    // call into this widget's (the GUI) thread.
    connect(m_pFeatureObserver.get(), SIGNAL(setChangedFeature(const QString&, const QString&)), this,
            SLOT(OnFeatureChanged(const QString&, const QString&)));
    setFocusPolicy(Qt::StrongFocus);
    setStyleSheet("QPushButton:disabled, QLineEdit:disabled, QComboBox:disabled, QDoubleSpinBox:disabled,"
                  "                                            "
                  "QSpinBox:disabled, QwtSlider:disabled, QGroupBox:disabled, QLabel:disabled { color: gray }");
    m_pMutex = new QMutex;
    m_pUpdateTimer = new QTimer(this);
    connect(m_pUpdateTimer, SIGNAL(timeout()), this, SLOT(updateTimer()));
    m_pChangedFeatures = new QStringList;
}

BaseTabPluginWidget::~BaseTabPluginWidget()
{
    UnRegisterFeatureObserver(true);
    delete m_pChangedFeatures;
    delete m_pMutex;
    delete m_pFeatureManager;
}

int BaseTabPluginWidget::WalkObservedFeatures(bool registering, bool markAllChanged, bool ignoreNotRegistered)
{
    const std::vector<OrvCPP::shared_ptr<OrvCPP::Feature>> features(m_pFeatures->begin(), m_pFeatures->end());
    int result = OrvErrorNotFound;
    if (features.empty())
    {
        qDebug() << "Could not get features. Error code: " << result << "\n";
        return result;
    }
    for (const OrvCPP::shared_ptr<OrvCPP::Feature>& feature : features)
    {
        std::string name;
        result = feature->GetName(name);
        if (result != OrvErrorSuccess)
            continue;
        const QString featureName = QString::fromStdString(name);
        if (!m_ObservedFeatures.contains(featureName))
            continue;
        if (registering)
        {
            result = feature->RegisterObserver(m_pFeatureObserver);
            if (result != OrvErrorSuccess)
                qDebug() << "Could not register feature observer. Error code: " << result << "\n";
            if (markAllChanged)
                m_pChangedFeatures->append(featureName);
        }
        else
        {
            result = feature->UnregisterObserver(m_pFeatureObserver);
            if (result != OrvErrorSuccess && !(ignoreNotRegistered && result == OrvErrorInvalidCall))
                qDebug() << "Could not unregister feature observer. Error code: " << result << "\n";
        }
    }
    return result;
}

int BaseTabPluginWidget::RegisterFeatureObserver(bool markAllChanged)
{
    return WalkObservedFeatures(true, markAllChanged, false);
}

int BaseTabPluginWidget::UnRegisterFeatureObserver(bool ignoreNotRegistered)
{
    return WalkObservedFeatures(false, false, ignoreNotRegistered);
}

QTranslator* BaseTabPluginWidget::GetTranslator(QString baseName)
{
    QTranslator* translator = new QTranslator;
    const QString locale = QLocale::system().name();
    if (!translator->load("plugins/" + baseName + "_" + locale))
        translator->load("plugins/" + baseName + "_" + locale.left(2));
    return translator;
}

bool BaseTabPluginWidget::updateComboBox(QString featureName, QComboBox* comboBox, bool setToolTips)
{
    if (!comboBox)
        return false;
    const QString value = m_pFeatureManager->GetStringValue(featureName);
    const QStringList entries = m_pFeatureManager->GetAvailableEnumEntries(featureName);
    comboBox->clear();
    comboBox->addItems(entries);
    if (setToolTips)
    {
        for (int i = 0; i < entries.size(); ++i)
            comboBox->setItemData(i, entries.at(i), Qt::ToolTipRole);
    }
    comboBox->setCurrentIndex(entries.indexOf(value));
    const bool writable = m_pFeatureManager->GetIsFeatureWritable(featureName);
    comboBox->setEnabled(writable);
    return writable;
}

void BaseTabPluginWidget::pauseUpdateTimer()
{
    m_pUpdateTimer->stop();
    UnRegisterFeatureObserver(false);
}

void BaseTabPluginWidget::continueUpdateTimer()
{
    m_pUpdateTimer->start();
    RegisterFeatureObserver(true);
}

void BaseTabPluginWidget::showEvent(QShowEvent*)
{
    m_pUpdateTimer->start(1000);
    QMutexLocker lock(m_pMutex);
    updateInit();
}

void BaseTabPluginWidget::hideEvent(QHideEvent*)
{
    // Observers stay registered: changes keep being collected while hidden.
    m_pUpdateTimer->stop();
    m_pChangedFeatures->clear();
}

void BaseTabPluginWidget::OnFeatureChanged(const QString& name, const QString& value)
{
    Q_UNUSED(value)
    QMutexLocker lock(m_pMutex);
    if (!m_pChangedFeatures->contains(name))
        m_pChangedFeatures->append(name);
}

void BaseTabPluginWidget::updateTimer()
{
    // No callbacks while the tab itself reads and writes the camera.
    UnRegisterFeatureObserver(false);
    QMutexLocker lock(m_pMutex);
    updateInit();
    RegisterFeatureObserver(false);
    m_pChangedFeatures->clear();
}
