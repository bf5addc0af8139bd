#ifndef CAMERACHOOSER_H
#define CAMERACHOOSER_H

#include "CameraDiscovery.h"

#include <QHash>
#include <QSet>
#include <QTimer>
#include <QWidget>

#include <memory>

class GenICamCamera;
class QTreeWidget;
class QTreeWidgetItem;

namespace Ui
{
class CameraChooser;
}

// The list of the cameras that can be opened: the devices Aravis finds (vendor
// and model, serial number, address, whether another application controls
// it), then the demo models as "Demo: ...". The last camera opened comes
// first. The list is refreshed when it is shown, every few seconds while it
// is, and on "Refresh".
//
// A double click or "Open" opens the camera (every one selected) in the background; the camera,
// open, comes out of opened(), and a camera that cannot be opened says why in
// its row. Each opening is a job of its own: several cameras may be opening
// at once, and each one comes out of opened() by itself.
class CameraChooser : public QWidget
{
    Q_OBJECT

public:
    explicit CameraChooser(QWidget* parent = nullptr);
    // Openings still running close what they open.
    ~CameraChooser() override;

    void setDemoFolder(const QString& folder);
    // The camera the window shows (empty for none): so marked in the list
    // (found by its id, or its serial number, which an address as id does
    // not give), and "Back to the camera" offered.
    void setCurrentCamera(const QString& id, const QString& serialNumber = QString());
    // A reason shown in a camera's row, such as why it cannot be used.
    void setProblem(const QString& id, const QString& reason);
    QString selectedId() const;
    // Every camera selected, in the list's order.
    QStringList selectedIds() const;
    // Selects the camera's row; false when it is not in the list.
    bool select(const QString& id);
    QTreeWidget* list() const;

    // The id of the camera opened last (kept in the user's settings), and
    // remembering one.
    static QString lastOpened();
    static void rememberOpened(const QString& id);

public slots:
    void refresh();
    void openSelected();
    void open(const QString& id);

signals:
    // A camera chosen is open, ready to be adopted.
    void opened(std::shared_ptr<GenICamCamera> camera);
    // "Back to the camera": the list is left as it is.
    void backRequested();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    struct Shared;
    void onListed(const QList<CameraDiscovery::Entry>& entries);
    void onOpened(const QString& id, const std::shared_ptr<GenICamCamera>& camera, const QString& reason);
    // The rows anew from the entries, the selection kept.
    void fill();
    QString statusOf(const CameraDiscovery::Entry& entry) const;

    Ui::CameraChooser* ui;
    std::shared_ptr<Shared> m_shared;
    CameraDiscovery* m_discovery;
    QTimer m_refresh;
    QList<CameraDiscovery::Entry> m_entries;
    QHash<QString, QString> m_problems; // by id
    QSet<QString> m_opening;            // ids being opened
    QString m_current;
    QString m_currentSerial;
};

#endif
