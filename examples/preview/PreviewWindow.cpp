// SPDX-License-Identifier: MIT
#include "PreviewWindow.h"

#include "VantlePresets/editor/PresetsWindowControllerObjCBridge.h"
#include "VantlePresets/model/RTMPVantlePreset.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QStatusBar>

#include <cstdio>

PreviewWindow::PreviewWindow(const std::shared_ptr<vantle::PresetsManager> &manager) : m_manager(manager)
{
    setWindowTitle(tr("Preview"));
    auto *video = new QLabel(tr("Here the host shows its video."), this);
    video->setAlignment(Qt::AlignCenter);
    video->setPalette(QPalette(Qt::white, Qt::black));
    video->setAutoFillBackground(true);
    setCentralWidget(video);
    resize(640, 360);
    auto *menu = menuBar()->addMenu(tr("&Stream"));
    menu->addAction(tr("&Edit Presets..."), this, &PreviewWindow::editPresets);
    auto *goLiveAction = menu->addAction(tr("&Go Live"), this, &PreviewWindow::goLive);
    const auto enable = [this, goLiveAction] { goLiveAction->setEnabled(bool(m_manager->selectedPreset())); };
    connect(m_manager.get(), &vantle::PresetsManager::selectedPresetChanged, this, enable);
    enable();
    connect(m_manager.get(), &vantle::PresetsManager::startFailed, statusBar(),
            [this](const QString &error) { statusBar()->showMessage(error); });
}

void PreviewWindow::editPresets()
{
    if (!m_editor)
        m_editor = vantle::PresetsWindowControllerObjCBridge::makePresetsWindowControllerWithPresetsManager(
            m_manager);
    m_editor->showWindow();
}

void PreviewWindow::goLive()
{
    const auto &preset = m_manager->selectedPreset();
    std::printf("Live with %s (%s)\n", qUtf8Printable(preset->name()),
                qUtf8Printable(vantle::displayName(preset->type())));
    if (const auto pushed = std::dynamic_pointer_cast<vantle::RTMPVantlePreset>(preset))
        std::printf("  to %s:%lld\n", qUtf8Printable(pushed->streamingURL()), pushed->portNumber());
    for (const auto &video : preset->videoSettings())
        std::printf("  %s, %lld kbit/s\n", qUtf8Printable(video->displayName()), video->bitRate());
    for (const auto &track : preset->audioSettings())
        std::printf("  %s\n", qUtf8Printable(track->aggregateDescription()));
    std::fflush(stdout);
}
