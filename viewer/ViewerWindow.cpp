#include "ViewerWindow.h"

#include "CameraChooser.h"
#include "CameraSession.h"
#include "GenICamCamera.h"
#include "PluginHost.h"
#include "TriggerSetupActions.h"
#include "TabExtensionInterface.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QMenuBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTabWidget>
#include <QTranslator>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace
{

// The camera list's columns.
enum ListColumn
{
    NameColumn,
    SerialColumn,
    StatusColumn
};

// The camera list's width at most: the pages get the rest.
const int ListWidthMax = 300;

} // namespace

ViewerWindow::ViewerWindow(GenICamCamera* camera, QWidget* parent)
    : QMainWindow(parent)
    , m_host(new PluginHost(this))
    , m_chooser(new CameraChooser)
    , m_views(new QStackedWidget)
    , m_cameraView(new QWidget)
    , m_list(new QTreeWidget)
    , m_side(new QWidget)
    , m_pages(new QStackedWidget)
{
    m_list->setObjectName("cameraList");
    m_list->setHeaderLabels({tr("Camera"), tr("Serial number"), tr("Status")});
    m_list->setRootIsDecorated(false);
    m_list->setMaximumWidth(ListWidthMax);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_list->header()->setStretchLastSection(true);
    QPushButton* close = new QPushButton(tr("Close camera"));
    close->setObjectName("closeCameraButton");
    QPushButton* add = new QPushButton(tr("Add camera..."));
    add->setObjectName("addCameraButton");
    m_side->setMaximumWidth(ListWidthMax);
    m_side->hide();
    QVBoxLayout* sideLayout = new QVBoxLayout(m_side);
    sideLayout->setContentsMargins(0, 0, 0, 0);
    sideLayout->addWidget(m_list, 1);
    sideLayout->addWidget(add);
    sideLayout->addWidget(close);
    QHBoxLayout* layout = new QHBoxLayout(m_cameraView);
    layout->addWidget(m_side);
    layout->addWidget(m_pages, 1);

    m_chooser->setObjectName("cameraChooser");
    m_views->addWidget(m_chooser);
    m_views->addWidget(m_cameraView);
    setCentralWidget(m_views);
    connect(m_chooser, &CameraChooser::opened, this, &ViewerWindow::onCameraChosen);
    connect(m_chooser, &CameraChooser::backRequested, this, &ViewerWindow::showCameraView);
    connect(m_list, &QTreeWidget::currentItemChanged, this,
            [this](QTreeWidgetItem* item)
            {
                if (item)
                    showSession(openSessions().value(m_list->indexOfTopLevelItem(item)));
            });
    connect(add, &QPushButton::clicked, this, &ViewerWindow::showChooserToAdd);
    connect(close, &QPushButton::clicked, this, &ViewerWindow::closeCurrentCamera);

    QMenu* cameraMenu = menuBar()->addMenu(tr("&Camera"));
    cameraMenu->addAction(tr("&Open..."), this, &ViewerWindow::showChooser, QKeySequence::Open);
    cameraMenu->addAction(tr("&Add..."), this, &ViewerWindow::showChooserToAdd);
    cameraMenu->addAction(tr("&Close"), this, &ViewerWindow::closeCurrentCamera, QKeySequence::Close);
    cameraMenu->addSeparator();
    new TriggerSetupActions(
        cameraMenu, [this] { return currentSession() ? currentSession()->features() : FeatureList(); }, this,
        [this]
        {
            TriggerSetupActions::Cameras cameras;
            for (CameraSession* session : openSessions())
                cameras.append({session->name(), session->features()});
            return cameras;
        });
    cameraMenu->addSeparator();
    cameraMenu->addAction(tr("&Quit"), this, &QWidget::close, QKeySequence::Quit);

    CameraSession* first = makeSession(new CameraSession(camera));
    m_views->setCurrentWidget(camera->isOpen() ? m_cameraView : m_chooser);
    showSession(first);
    first->reportOpen();
}

ViewerWindow::~ViewerWindow()
{
    // The sessions go while the window is whole: nothing they do reaches it any more.
    for (CameraSession* session : qAsConst(m_sessions))
        disconnect(session, nullptr, this, nullptr);
    qDeleteAll(m_sessions);
}

bool ViewerWindow::installTranslation(const QLocale& locale, const QString& folder)
{
    QTranslator* translator = new QTranslator(QCoreApplication::instance());
    if (!translator->load(locale, "triggerio-viewer", "_", folder))
    {
        delete translator;
        return false;
    }
    return QCoreApplication::installTranslator(translator);
}

CameraSession* ViewerWindow::makeSession(CameraSession* session)
{
    session->setPlugins(m_plugins);
    m_sessions << session;
    m_pages->addWidget(session);
    connect(session, &CameraSession::acquisitionChanged, this,
            [this, session](bool acquiring)
            {
                if (session == currentSession())
                    announceAcquiring(acquiring);
            });
    // What a camera not shown reports goes to the status line only when its status changes.
    connect(session, &CameraSession::message, this,
            [this, session](const QString& text, bool status)
            {
                if (status || session == currentSession())
                    report(text);
            });
    connect(session, &CameraSession::statusChanged, this,
            [this, session]
            {
                const CameraSession::Status status = session->status();
                if (session == currentSession() && (status == CameraSession::Open || status == CameraSession::Back))
                    m_views->setCurrentWidget(m_cameraView);
                refreshList();
            });
    connect(session, &CameraSession::problem, this,
            [this](const QString& problem)
            {
                if (!m_problems.contains(problem))
                    m_problems << problem;
            });
    connect(session, &CameraSession::noTab, this, [this, session](const QString& id) { onNoTab(session, id); });
    return session;
}

int ViewerWindow::addTabs(const QString& pluginFolder)
{
    const QList<TabExtensionInterface*> plugins = m_host->load(pluginFolder);
    m_problems << m_host->problems();
    for (TabExtensionInterface* plugin : plugins)
        plugin->connectFromAcquire(this, SIGNAL(acquisitionChanged(bool)));
    m_plugins << plugins;
    for (CameraSession* session : qAsConst(m_sessions))
        session->setPlugins(m_plugins);
    CameraSession* shown = currentSession();
    const int added = shown->camera()->isOpen() ? shown->buildPages() : 0;
    if (!m_problems.isEmpty())
        report(m_problems.join("; "));
    return added;
}

bool ViewerWindow::hasPlugins() const
{
    return !m_plugins.isEmpty();
}

QStringList ViewerWindow::problems() const
{
    return m_problems;
}

CameraSession* ViewerWindow::addCamera(const std::shared_ptr<GenICamCamera>& camera)
{
    CameraSession* shown = currentSession();
    CameraSession* session = makeSession(new CameraSession(std::make_unique<GenICamCamera>()));
    // The new camera opens on the page the user is on.
    session->showPageWhenOpen(shown->tabs()->tabText(shown->tabs()->currentIndex()));
    m_pages->setCurrentWidget(session);
    session->onCameraChosen(camera);
    if (m_sessions.contains(session))
        showSession(session);
    return session;
}

void ViewerWindow::closeCamera(CameraSession* session)
{
    if (!m_sessions.contains(session))
        return;
    session->closeCamera();
    if (m_sessions.size() == 1)
    {
        showChooser();
        return;
    }
    m_sessions.removeOne(session);
    m_pages->removeWidget(session);
    session->deleteLater(); // its camera is let go of already
    showSession(openSessions().value(0, m_sessions.first()));
}

void ViewerWindow::closeCurrentCamera()
{
    closeCamera(currentSession());
}

void ViewerWindow::onNoTab(CameraSession* session, const QString& id)
{
    m_chooser->setProblem(id, tr("No tab for this camera"));
    if (m_sessions.size() > 1)
    {
        m_sessions.removeOne(session);
        m_pages->removeWidget(session);
        session->deleteLater(); // it is telling this
        showSession(openSessions().value(0, m_sessions.first()));
    }
    else
        refreshList();
    showChooser();
}

QList<CameraSession*> ViewerWindow::sessions() const
{
    return m_sessions;
}

QList<CameraSession*> ViewerWindow::openSessions() const
{
    QList<CameraSession*> open;
    for (CameraSession* session : m_sessions)
    {
        if (session->status() != CameraSession::Closed)
            open << session;
    }
    return open;
}

CameraSession* ViewerWindow::currentSession() const
{
    return static_cast<CameraSession*>(m_pages->currentWidget());
}

void ViewerWindow::showSession(CameraSession* session)
{
    if (!session || !m_sessions.contains(session))
        return;
    m_pages->setCurrentWidget(session);
    refreshList();
    announceAcquiring(session->isAcquiring());
}

void ViewerWindow::refreshList()
{
    const QList<CameraSession*> open = openSessions();
    CameraSession* shown = currentSession();
    m_list->blockSignals(true);
    while (m_list->topLevelItemCount() > open.size())
        delete m_list->topLevelItem(m_list->topLevelItemCount() - 1);
    while (m_list->topLevelItemCount() < open.size())
        new QTreeWidgetItem(m_list);
    for (int row = 0; row < open.size(); ++row)
    {
        QTreeWidgetItem* item = m_list->topLevelItem(row);
        const CameraSession* session = open.at(row);
        item->setText(NameColumn, session->name());
        item->setToolTip(NameColumn, session->camera()->id());
        item->setText(SerialColumn, session->camera()->serialNumber());
        item->setText(StatusColumn, session->statusText());
        item->setForeground(StatusColumn,
                            session->isCameraLost() ? QBrush(QColor(200, 30, 30)) : m_list->palette().text());
        if (session == shown)
            m_list->setCurrentItem(item);
    }
    m_list->blockSignals(false);
    // One camera alone is shown as the window always showed it: without the list.
    m_side->setVisible(open.size() > 1);

    const bool isOpen = shown->status() != CameraSession::Closed;
    setWindowTitle(isOpen ? tr("Trigger IO viewer - %1").arg(shown->camera()->id()) : tr("Trigger IO viewer"));
    m_chooser->setCurrentCamera(isOpen ? shown->camera()->id() : QString(),
                                isOpen ? shown->camera()->serialNumber() : QString());
}

int ViewerWindow::pageIndex(const QString& title) const
{
    return currentSession()->pageIndex(title);
}

void ViewerWindow::showPageWhenOpen(const QString& title)
{
    currentSession()->showPageWhenOpen(title);
}

QTreeWidget* ViewerWindow::cameraList() const
{
    return m_list;
}

QTabWidget* ViewerWindow::tabs() const
{
    return currentSession()->tabs();
}

QPushButton* ViewerWindow::acquireButton() const
{
    return currentSession()->acquireButton();
}

int ViewerWindow::frameCount() const
{
    return currentSession()->frameCount();
}

bool ViewerWindow::isStreaming() const
{
    return currentSession()->isStreaming();
}

bool ViewerWindow::isCameraLost() const
{
    return currentSession()->isCameraLost();
}

CameraChooser* ViewerWindow::chooser() const
{
    return m_chooser;
}

void ViewerWindow::triggerSoftware()
{
    currentSession()->triggerSoftware();
}

void ViewerWindow::showChooser()
{
    m_replace = true;
    m_views->setCurrentWidget(m_chooser);
    m_chooser->list()->setFocus();
}

void ViewerWindow::showChooserToAdd()
{
    showChooser();
    m_replace = false;
}

void ViewerWindow::showCameraView()
{
    if (currentSession()->status() != CameraSession::Closed)
        m_views->setCurrentWidget(m_cameraView);
}

void ViewerWindow::announceAcquiring(bool acquiring)
{
    if (m_announced == acquiring)
        return;
    m_announced = acquiring;
    emit acquisitionChanged(acquiring);
}

void ViewerWindow::onCameraFound(std::shared_ptr<GenICamCamera> camera)
{
    currentSession()->onCameraFound(std::move(camera));
}

void ViewerWindow::onCameraChosen(std::shared_ptr<GenICamCamera> camera)
{
    CameraSession* shown = currentSession();
    // The first camera opened after "Open..." takes the place of the one shown, and one
    // chosen into an empty window fills it; the others open beside.
    if (m_replace || shown->status() == CameraSession::Closed)
    {
        m_replace = false;
        shown->onCameraChosen(std::move(camera));
        return;
    }
    addCamera(camera);
}

void ViewerWindow::report(const QString& message)
{
    statusBar()->showMessage(message);
}
