// SPDX-License-Identifier: MIT
#include "examples/preview/PreviewWindow.h"
#include "tests/support/LiveStore.h"

#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QMenuBar>

#include <gtest/gtest.h>

namespace vantle::test {
namespace {

QMainWindow *editorWindow()
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->windowTitle() == QStringLiteral("YouTube Preset"))
            return qobject_cast<QMainWindow *>(window);
    }
    return nullptr;
}

TEST(PreviewHost, OpensTheEditorFromItsMenuAndGoesLiveWithTheChosenPreset)
{
    const LiveStore store;
    const std::shared_ptr<PresetsManager> manager = store.makeManager();
    ASSERT_TRUE(manager);
    PreviewWindow window(manager);
    window.show();
    const auto press = [&window](const QString &item) {
        QTest::keyClick(&window, Qt::Key_S, Qt::AltModifier);
        ASSERT_TRUE(QTest::qWaitFor([] { return QApplication::activePopupWidget() != nullptr; }));
        for (const QAction *action : QApplication::activePopupWidget()->actions()) {
            if (action->text().remove(u'&') == item)
                return QTest::keyClick(QApplication::activePopupWidget(),
                                       static_cast<Qt::Key>(action->text().at(1).unicode()));
        }
        FAIL() << "no item " << item.toStdString();
    };
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    press(QStringLiteral("Edit Presets..."));
    manager->addNewPreset(StreamingType::youTube);
    QCoreApplication::processEvents();
    EXPECT_TRUE(editorWindow());

    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    testing::internal::CaptureStdout();
    press(QStringLiteral("Go Live"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Live with YouTube Preset (YouTube)\n"
              "  to a.rtmp.youtube.com:1935\n"
              "  Video Variant: H.264 1920 x 1080 @ 30.0, 4500 kbit/s\n"
              "  English (en) - AAC LC - @ 44100Hz - 128 kbps\n");
    manager->waitForFileTasks();
}

} // namespace
} // namespace vantle::test
