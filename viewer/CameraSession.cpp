#include "CameraSession.h"

#include "CameraFinder.h"
#include "CameraStream.h"
#include "GenICamCamera.h"
#include "TabExtensionInterface.h"

#include <QApplication>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <cstdio>

namespace
{

// How long the session waits between two attempts to find a lost camera again.
const int SearchPauseMs = 2000;
// How often a camera found while the pages are busy asks again whether they can be rebuilt.
const int RetryPeriodMs = 100;
// The dynamic property on which a page hands its history on to the page built after it.
const char* const CarryOverProperty = "triggerioCarryOver";

// Lets go of a device in the background: the last reference to a camera that
// still answers says goodbye to it over the link.
void letGoInBackground(std::shared_ptr<const GenICamCamera> camera)
{
    if (camera)
        GenICamCamera::runInBackground([camera = std::move(camera)]() mutable { camera.reset(); });
}

} // namespace

CameraSession::CameraSession(GenICamCamera* camera, QWidget* parent)
    : QWidget(parent)
    , m_camera(camera)
    , m_features(camera->features())
    , m_stream(new CameraStream(camera, this))
    , m_finder(new CameraFinder(this))
    , m_status(camera->isOpen() ? Open : Closed)
    , m_retry(new QTimer(this))
    , m_tabs(new QTabWidget)
    , m_image(new QLabel)
    , m_counter(new QLabel)
    , m_acquire(new QPushButton(tr("Acquire")))
{
    m_image->setObjectName("liveImage");
    m_image->setMinimumSize(256, 256);
    m_image->setAlignment(Qt::AlignCenter);
    m_image->setFrameShape(QFrame::StyledPanel);
    m_image->setText(tr("No image"));
    m_counter->setObjectName("frameCounter");
    m_counter->setText(tr("Frames: %1").arg(0));
    m_acquire->setObjectName("acquireButton");
    m_acquire->setCheckable(true);

    QWidget* live = new QWidget;
    QVBoxLayout* liveLayout = new QVBoxLayout(live);
    liveLayout->addWidget(m_image, 1);
    liveLayout->addWidget(m_counter);
    liveLayout->addWidget(m_acquire);
    QHBoxLayout* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(live, 1);
    layout->addWidget(m_tabs, 2);

    connect(m_acquire, &QPushButton::toggled, this, &CameraSession::onAcquireToggled);
    connect(m_stream, &CameraStream::frameReceived, this, &CameraSession::onFrame);
    connect(m_stream, &CameraStream::started, this,
            [this]
            {
                report(tr("Acquiring"));
                announceAcquiring(true);
            });
    connect(m_stream, &CameraStream::failed, this,
            [this](const QString& reason)
            {
                report(tr("Acquisition not started: %1").arg(reason));
                m_acquire->blockSignals(true);
                m_acquire->setChecked(false);
                m_acquire->blockSignals(false);
            });
    connect(m_stream, &CameraStream::commandRun, this,
            [this](int result)
            {
                report(result == OrvErrorSuccess ? tr("Software trigger sent")
                                                 : tr("Software trigger failed (error %1)").arg(result));
            });
    m_finder->setInterval(SearchPauseMs);
    connect(m_finder, &CameraFinder::found, this, &CameraSession::onCameraFound);
    // The backend tells of a loss on its own threads: handed to the GUI thread.
    m_camera->setLostHandler([this]
                             { QMetaObject::invokeMethod(this, &CameraSession::checkCamera, Qt::QueuedConnection); });
    m_retry->setInterval(RetryPeriodMs);
    connect(m_retry, &QTimer::timeout, this, &CameraSession::rebuildWhenSafe);
}

CameraSession::CameraSession(std::unique_ptr<GenICamCamera> owned, QWidget* parent)
    : CameraSession(owned.get(), parent)
{
    m_owned = std::move(owned);
}

CameraSession::~CameraSession()
{
    m_camera->setLostHandler(nullptr); // waits for a call in progress
    m_stream->stop();
    if (!m_owned)
        return; // the camera stays with its owner, open
    // The pages and their feature handles go before the camera, which is let
    // go of in the background (a camera on a silent link takes seconds).
    releasePages();
    m_features.reset();
    letGoInBackground(m_camera->handle());
    m_camera->close();
}

void CameraSession::setPlugins(const QList<TabExtensionInterface*>& plugins)
{
    m_plugins = plugins;
}

int CameraSession::buildPages(const QHash<TabExtensionInterface*, QVariant>& carried)
{
    int added = 0;
    for (TabExtensionInterface* plugin : qAsConst(m_plugins))
    {
        QWidget* page = new QWidget;
        if (carried.contains(plugin))
            page->setProperty(CarryOverProperty, carried.value(plugin));
        const TabExtensionResult result = plugin->get(m_features, *page, nullptr);
        if (result == 4) // the plug-in does not serve this camera: no page, nothing to report
        {
            delete page;
            continue;
        }
        if (result != 0)
        {
            emit problem(
                tr("%1 offers no tab for this camera (result %2)").arg(plugin->metaObject()->className()).arg(result));
            delete page;
            continue;
        }
        // The plug-in names its page through the page's accessible name.
        const QString title =
            page->accessibleName().isEmpty() ? plugin->metaObject()->className() : page->accessibleName();
        m_tabs->addTab(page, title);
        m_pagePlugins.insert(page, plugin);
        ++added;
    }
    return added;
}

void CameraSession::releasePages()
{
    while (m_tabs->count() > 0)
    {
        QWidget* page = m_tabs->widget(0);
        m_tabs->removeTab(0);
        delete page;
    }
    m_pagePlugins.clear();
}

FeatureList CameraSession::features() const
{
    return m_features;
}

GenICamCamera* CameraSession::camera() const
{
    return m_camera;
}

CameraSession::Status CameraSession::status() const
{
    return m_status;
}

QString CameraSession::statusText() const
{
    switch (m_status)
    {
    case Open:
        return tr("Open");
    case Lost:
        return tr("Lost");
    case Back:
        return tr("Back");
    case Closed:
        break;
    }
    return tr("Closed");
}

QString CameraSession::name() const
{
    const QString id = m_camera->id();
    if (id.startsWith(QLatin1String(GenICamCamera::FakePrefix)))
        return tr("Demo: %1").arg(QFileInfo(id).completeBaseName());
    return id;
}

int CameraSession::pageIndex(const QString& title) const
{
    for (int i = 0; i < m_tabs->count(); ++i)
    {
        if (m_tabs->tabText(i) == title)
            return i;
        // A plug-in's widget names its page with tr(): its class is the
        // context the English title is translated in.
        for (const QWidget* widget : m_tabs->widget(i)->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        {
            const QByteArray english = title.toUtf8();
            if (QCoreApplication::translate(widget->metaObject()->className(), english.constData()) ==
                m_tabs->tabText(i))
                return i;
        }
    }
    return -1;
}

void CameraSession::showPageWhenOpen(const QString& title)
{
    m_firstPage = title;
}

QTabWidget* CameraSession::tabs() const
{
    return m_tabs;
}

QPushButton* CameraSession::acquireButton() const
{
    return m_acquire;
}

int CameraSession::frameCount() const
{
    return m_stream->frameCount();
}

bool CameraSession::isStreaming() const
{
    return m_stream->isRunning();
}

bool CameraSession::isCameraLost() const
{
    return m_status == Lost;
}

bool CameraSession::isAcquiring() const
{
    return m_announced;
}

void CameraSession::closeCamera()
{
    m_finder->stop();
    m_retry->stop();
    letGoInBackground(std::move(m_found));
    m_found.reset();
    if (m_acquire->isChecked())
        m_acquire->click(); // stopped on the camera it runs on
    m_stream->stop();
    releasePages();
    m_features.reset();
    letGoInBackground(m_camera->handle());
    m_camera->close();
    m_features = m_camera->features(); // none
    m_image->setPixmap(QPixmap());
    m_image->setText(tr("No image"));
    setStatus(Closed, QString());
}

void CameraSession::reportOpen()
{
    if (m_camera->isOpen())
        setStatus(Open, tr("Camera %1 open").arg(m_camera->id()));
}

void CameraSession::announceAcquiring(bool acquiring)
{
    if (m_announced == acquiring)
        return;
    m_announced = acquiring;
    emit acquisitionChanged(acquiring);
}

void CameraSession::checkCamera()
{
    if (m_status == Lost || !m_camera->isDeviceLost())
        return;
    m_stream->stop(); // sends nothing to a lost camera
    m_acquire->blockSignals(true);
    m_acquire->setChecked(false);
    m_acquire->blockSignals(false);
    m_acquire->setEnabled(false);
    announceAcquiring(false);
    m_tabs->setEnabled(false);
    m_image->setPixmap(QPixmap());
    m_image->setText(tr("No camera"));
    const QString reason = m_camera->lostReason();
    setStatus(Lost, reason.isEmpty() ? tr("Camera %1 lost").arg(m_camera->id())
                                     : tr("Camera %1 lost (%2)").arg(m_camera->id(), reason));
    // A model on the in-process fake device cannot come back by itself.
    if (!m_camera->id().startsWith(QLatin1String(GenICamCamera::FakePrefix)))
        m_finder->start(m_camera->id(), m_camera->serialNumber());
}

void CameraSession::onCameraFound(std::shared_ptr<GenICamCamera> camera)
{
    if (m_found && !m_foundAgain)
    {
        letGoInBackground(std::move(camera)); // a camera chosen meanwhile goes first
        return;
    }
    letGoInBackground(std::move(m_found)); // one found before and still waiting
    m_found = std::move(camera);
    m_foundAgain = true;
    rebuildWhenSafe();
}

void CameraSession::onCameraChosen(std::shared_ptr<GenICamCamera> camera)
{
    m_finder->stop();
    letGoInBackground(std::move(m_found)); // found again, or chosen before, and still waiting
    m_found = std::move(camera);
    m_foundAgain = false;
    rebuildWhenSafe();
}

void CameraSession::rebuildWhenSafe()
{
    if (!m_found)
    {
        m_retry->stop();
        return;
    }
    // A page's modal dialog or popup runs an event loop of its own (exec(), or
    // QFileDialog's and QMessageBox's static functions) inside code of the page.
    if (QApplication::activeModalWidget() || QApplication::activePopupWidget())
    {
        if (!m_retry->isActive())
        {
            report(tr("Camera %1 answers again: the pages are built anew once the dialog or menu is closed")
                       .arg(m_camera->id()));
            m_retry->start();
        }
        return;
    }
    m_retry->stop();
    const std::shared_ptr<GenICamCamera> camera = std::move(m_found);
    m_found.reset();
    const bool again = m_foundAgain;
    if (m_acquire->isChecked())
        m_acquire->click(); // stopped on the camera it runs on

    // What each page hands on to the one its plug-in builds next (the same
    // camera found again only), and the page the user is on.
    const QString current = m_firstPage.isEmpty() ? m_tabs->tabText(m_tabs->currentIndex()) : m_firstPage;
    QHash<TabExtensionInterface*, QVariant> carried;
    for (int i = 0; again && i < m_tabs->count(); ++i)
        carried.insert(m_pagePlugins.value(m_tabs->widget(i)), m_tabs->widget(i)->property(CarryOverProperty));
    // The old pages and feature handles go first; the old device is let go
    // of in the background (a camera still answering is told goodbye).
    releasePages();
    m_features.reset();
    std::shared_ptr<const GenICamCamera> old = m_camera->handle();
    m_camera->adopt(*camera);
    letGoInBackground(std::move(old));
    m_features = m_camera->features();
    m_status = again ? Back : Open;
    if (buildPages(carried) == 0 && !again)
    {
        const QString id = m_camera->id();
        closeCamera();
        emit noTab(id);
        return;
    }
    const int page = pageIndex(current);
    if (page >= 0)
        m_tabs->setCurrentIndex(page);
    m_firstPage.clear();
    m_tabs->setEnabled(true);
    m_acquire->setEnabled(true);
    m_image->setPixmap(QPixmap());
    m_image->setText(tr("No image"));
    m_counter->setText(tr("Frames: %1").arg(0));
    setStatus(again ? Back : Open, tr("Camera %1 open").arg(m_camera->id()));
}

void CameraSession::triggerSoftware()
{
    for (const OrvCPP::shared_ptr<OrvCPP::Feature>& feature : *m_features)
    {
        std::string name;
        if (!feature || feature->GetName(name) != OrvErrorSuccess || name != "TriggerSoftware")
            continue;
        m_stream->runCommand(feature);
        return;
    }
    report(tr("The camera has no software trigger"));
}

void CameraSession::onAcquireToggled(bool on)
{
    if (on)
    {
        m_counter->setText(tr("Frames: %1").arg(0));
        report(tr("Starting the acquisition"));
        m_stream->start(); // "Acquiring" or the reason follows
        return;
    }
    m_stream->stop();
    report(tr("Stopped after %1 frames").arg(m_stream->frameCount()));
    announceAcquiring(false);
}

void CameraSession::onFrame(const QImage& image, int frameCount)
{
    m_counter->setText(tr("Frames: %1").arg(frameCount));
    if (!image.isNull())
        m_image->setPixmap(QPixmap::fromImage(image).scaled(m_image->size(), Qt::KeepAspectRatio));
}

void CameraSession::report(const QString& text)
{
    emit message(text, false);
}

void CameraSession::setStatus(Status status, const QString& text)
{
    m_status = status;
    emit statusChanged();
    if (text.isEmpty())
        return;
    emit message(text, true);
    // Not through Qt's message handler: the plug-ins install one that swallows everything.
    std::fprintf(stderr, "triggerio-viewer: %s\n", qPrintable(text));
    std::fflush(stderr);
}
