#include "CameraChooser.h"

#include "ui_CameraChooser.h"

#include "GenICamCamera.h"

#include <QFileInfo>
#include <QHeaderView>
#include <QSettings>

#include <mutex>

namespace
{

// How often the list is refreshed while it is shown.
const int RefreshPeriodMs = 3000;
// Room between a column's widest text and the next column.
const int ColumnGap = 24;
const char* const LastOpenedKey = "chooser/lastCamera";
enum Column
{
    CameraColumn,
    SerialColumn,
    AddressColumn,
    StatusColumn
};

} // namespace

// What an opening's thread and the chooser share: the chooser, as long as it lives.
struct CameraChooser::Shared
{
    std::mutex mutex;
    CameraChooser* owner = nullptr;
};

CameraChooser::CameraChooser(QWidget* parent)
    : QWidget(parent)
    , ui(new Ui::CameraChooser)
    , m_shared(std::make_shared<Shared>())
    , m_discovery(new CameraDiscovery(this))
{
    ui->setupUi(this);
    m_shared->owner = this;
    ui->tw_Cameras->header()->setStretchLastSection(true);
    // Several cameras chosen open together, each beside the others.
    ui->tw_Cameras->setSelectionMode(QAbstractItemView::ExtendedSelection);
    ui->pb_Back->hide();
    m_refresh.setInterval(RefreshPeriodMs);
    connect(&m_refresh, &QTimer::timeout, this, &CameraChooser::refresh);
    connect(ui->pb_Refresh, &QPushButton::clicked, this, &CameraChooser::refresh);
    connect(ui->pb_Open, &QPushButton::clicked, this, &CameraChooser::openSelected);
    connect(ui->pb_Back, &QPushButton::clicked, this, &CameraChooser::backRequested);
    connect(ui->tw_Cameras, &QTreeWidget::itemActivated, this, &CameraChooser::openSelected);
    connect(m_discovery, &CameraDiscovery::listed, this, &CameraChooser::onListed);
}

CameraChooser::~CameraChooser()
{
    {
        std::lock_guard<std::mutex> lock(m_shared->mutex);
        m_shared->owner = nullptr;
    }
    delete ui;
}

void CameraChooser::setDemoFolder(const QString& folder)
{
    m_discovery->setDemoFolder(folder);
}

void CameraChooser::setCurrentCamera(const QString& id, const QString& serialNumber)
{
    m_current = id;
    m_currentSerial = serialNumber;
    ui->pb_Back->setVisible(!id.isEmpty());
    fill();
}

void CameraChooser::setProblem(const QString& id, const QString& reason)
{
    m_problems.insert(id, reason);
    fill();
}

QString CameraChooser::selectedId() const
{
    const QTreeWidgetItem* item = ui->tw_Cameras->currentItem();
    return item && item->isSelected() ? item->data(CameraColumn, Qt::UserRole).toString() : QString();
}

QStringList CameraChooser::selectedIds() const
{
    QStringList ids;
    for (const QTreeWidgetItem* item : ui->tw_Cameras->selectedItems())
        ids << item->data(CameraColumn, Qt::UserRole).toString();
    return ids;
}

bool CameraChooser::select(const QString& id)
{
    for (int row = 0; row < ui->tw_Cameras->topLevelItemCount(); ++row)
    {
        QTreeWidgetItem* item = ui->tw_Cameras->topLevelItem(row);
        if (item->data(CameraColumn, Qt::UserRole).toString() == id)
        {
            ui->tw_Cameras->setCurrentItem(item);
            return true;
        }
    }
    return false;
}

QTreeWidget* CameraChooser::list() const
{
    return ui->tw_Cameras;
}

QString CameraChooser::lastOpened()
{
    return QSettings().value(LastOpenedKey).toString();
}

void CameraChooser::rememberOpened(const QString& id)
{
    QSettings().setValue(LastOpenedKey, id);
}

void CameraChooser::refresh()
{
    ui->lb_Searching->setText(tr("Looking for cameras..."));
    m_discovery->refresh();
}

void CameraChooser::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    refresh();
    m_refresh.start();
}

void CameraChooser::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    m_refresh.stop();
}

void CameraChooser::onListed(const QList<CameraDiscovery::Entry>& entries)
{
    ui->lb_Searching->clear();
    m_entries = entries;
    // The camera opened last comes first (opened by its address, with --camera, too).
    const QString last = lastOpened();
    for (int i = 0; i < m_entries.size(); ++i)
    {
        if (m_entries[i].device.id == last || (!m_entries[i].demo && m_entries[i].device.address == last))
            m_entries.move(i, 0);
    }
    fill();
}

QString CameraChooser::statusOf(const CameraDiscovery::Entry& entry) const
{
    const QString& id = entry.device.id;
    if (m_opening.contains(id))
        return tr("Opening...");
    if (m_problems.contains(id))
        return m_problems.value(id);
    if (!m_current.isEmpty() && (id == m_current || (!m_currentSerial.isEmpty() && !entry.demo &&
                                                     entry.device.serial == m_currentSerial)))
        return tr("Open in this window");
    switch (entry.control)
    {
    case CameraDiscovery::Control::Free:
        return tr("Free");
    case CameraDiscovery::Control::Elsewhere:
        return tr("Controlled by another application");
    case CameraDiscovery::Control::Unknown:
        break;
    }
    return tr("Not known whether in use");
}

void CameraChooser::fill()
{
    QTreeWidget* list = ui->tw_Cameras;
    const QString selected = list->currentItem() ? selectedId() : lastOpened();
    const QStringList chosen = selectedIds();
    // Rows are updated in place: a refresh does not take a row from under a click.
    while (list->topLevelItemCount() > m_entries.size())
        delete list->topLevelItem(list->topLevelItemCount() - 1);
    while (list->topLevelItemCount() < m_entries.size())
        new QTreeWidgetItem(list);
    for (int row = 0; row < m_entries.size(); ++row)
    {
        const CameraDiscovery::Entry& entry = m_entries.at(row);
        const GenICamCamera::DeviceInfo& device = entry.device;
        QString name = (device.vendor + " " + device.model).trimmed();
        if (entry.demo)
            name = tr("Demo: %1").arg(device.model);
        else if (name.isEmpty())
            name = device.id;
        QTreeWidgetItem* item = list->topLevelItem(row);
        item->setText(CameraColumn, name);
        item->setText(SerialColumn, device.serial);
        item->setText(AddressColumn, entry.demo ? QFileInfo(device.address).fileName() : device.address);
        item->setText(StatusColumn, statusOf(entry));
        item->setData(CameraColumn, Qt::UserRole, device.id);
        item->setToolTip(CameraColumn, device.id);
        item->setToolTip(StatusColumn, item->text(StatusColumn));
        const bool problem = m_problems.contains(device.id) && !m_opening.contains(device.id);
        item->setForeground(StatusColumn, problem ? QBrush(QColor(200, 30, 30)) : list->palette().text());
    }
    for (int column : {CameraColumn, SerialColumn, AddressColumn})
    {
        list->resizeColumnToContents(column);
        list->setColumnWidth(column, list->columnWidth(column) + ColumnGap);
    }
    if (!select(selected) && list->topLevelItemCount() > 0)
        list->setCurrentItem(list->topLevelItem(0));
    // Several rows chosen stay chosen, wherever the refresh moved them.
    for (int row = 0; chosen.size() > 1 && row < list->topLevelItemCount(); ++row)
    {
        if (chosen.contains(list->topLevelItem(row)->data(CameraColumn, Qt::UserRole).toString()))
            list->topLevelItem(row)->setSelected(true);
    }
}

void CameraChooser::openSelected()
{
    for (const QString& id : selectedIds())
        open(id);
}

void CameraChooser::open(const QString& id)
{
    if (id.isEmpty() || m_opening.contains(id))
        return;
    m_opening.insert(id);
    m_problems.remove(id);
    fill();
    // Opening waits for the link (control, the description): in the backend's
    // background. An opening that ends after the chooser is gone closes the camera there.
    GenICamCamera::runInBackground(
        [shared = m_shared, id]
        {
            auto camera = std::make_shared<GenICamCamera>();
            const QString reason = camera->open(id) == OrvErrorSuccess ? QString() : camera->errorString();
            if (!reason.isEmpty())
                camera.reset();
            std::lock_guard<std::mutex> lock(shared->mutex);
            if (CameraChooser* chooser = shared->owner)
                QMetaObject::invokeMethod(
                    chooser, [chooser, id, camera, reason] { chooser->onOpened(id, camera, reason); },
                    Qt::QueuedConnection);
        });
}

void CameraChooser::onOpened(const QString& id, const std::shared_ptr<GenICamCamera>& camera, const QString& reason)
{
    m_opening.remove(id);
    if (!camera)
    {
        m_problems.insert(id, reason);
        fill();
        return;
    }
    rememberOpened(id);
    fill();
    emit opened(camera);
}
