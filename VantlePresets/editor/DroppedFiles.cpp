// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/DroppedFiles.h"

#include <QtCore/QMimeData>
#include <QtCore/QPointer>
#include <QtCore/QThreadPool>
#include <QtGui/QDropEvent>
#include <QtWidgets/QApplication>

namespace vantle {

DroppedFiles::DroppedFiles(QWidget *view) : QObject(view), m_view(view)
{
    view->setAcceptDrops(true);
    qApp->installEventFilter(this);
}

bool DroppedFiles::eventFilter(QObject *watched, QEvent *event)
{
    const bool isDrop = event->type() == QEvent::Drop;
    if (!isDrop && event->type() != QEvent::DragEnter && event->type() != QEvent::DragMove)
        return false;
    const auto *widget = qobject_cast<const QWidget *>(watched);
    if (!widget || (widget != m_view && !m_view->isAncestorOf(widget)))
        return false;
    auto *drag = static_cast<QDropEvent *>(event); // the other two are such events, too
    QList<QUrl> files = drag->mimeData()->urls();
    files.removeIf([](const QUrl &url) { return !url.isLocalFile(); });
    if (files.isEmpty())
        return false;
    drag->setDropAction(Qt::CopyAction);
    drag->accept();
    if (isDrop)
        readSoon(files);
    return true;
}

void DroppedFiles::readSoon(const QList<QUrl> &files)
{
    std::vector<std::filesystem::path> paths;
    for (const QUrl &url : files)
        paths.emplace_back(url.toLocalFile().toStdString());
    // The application waits for the pool when it ends.
    QThreadPool::globalInstance()->start([self = QPointer<DroppedFiles>(this), paths] {
        QList<PresetImport> imports = readPresetsToImport(paths);
        QMetaObject::invokeMethod(
            qApp,
            [self, imports = std::move(imports)] {
                if (self)
                    Q_EMIT self->read(imports);
            },
            Qt::QueuedConnection);
    });
}

} // namespace vantle
