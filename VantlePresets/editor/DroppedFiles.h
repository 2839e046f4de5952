// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/store/PresetImport.h"

#include <QtWidgets/QWidget>

namespace vantle {

/// Takes the files that are dropped anywhere on a view, whose fields would take them for text, and reads them
/// in the background as presets to be imported. The view owns it.
class DroppedFiles : public QObject
{
    Q_OBJECT

public:
    explicit DroppedFiles(QWidget *view);

Q_SIGNALS:
    /// What one drop brought. Not sent when no file was among it.
    void read(const QList<PresetImport> &imports);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void readSoon(const QList<QUrl> &files);

    QWidget *m_view;
};

} // namespace vantle
