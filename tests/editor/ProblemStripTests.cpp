// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/ProblemStrip.h"
#include "tests/editor/OpenEditor.h"
#include "tests/support/OtherUser.h"

#include <filesystem>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using test::OtherUser;
using test::waitFor;

constexpr uid_t kNobody = 65534;

class Problems : public test::OpenEditor
{
protected:
    void TearDown() override
    {
        std::filesystem::permissions(m_store.folder(), std::filesystem::perms::owner_all);
        OpenEditor::TearDown();
    }

    [[nodiscard]] ProblemStrip &strip() const { return *window().findChild<ProblemStrip *>(); }
    [[nodiscard]] QPushButton *tryAgain() const { return strip().findChild<QPushButton *>(u"tryAgain"_s); }
};

TEST_F(Problems, AreSaidInASpaceThatIsReservedUntilTheNextTryWorks)
{
    m_store.writePreset(u"Alpha"_s);
    m_store.writePreset(u"Beta"_s);
    ASSERT_TRUE(
        m_store.runElsewhere(u"chmod 644 *.json; chmod 755 .. ../.."_s)); // another user can read them
    open();
    clickRow(u"Alpha"_s);
    const QRect before = form()->geometry();
    EXPECT_TRUE(strip().isVisible());
    EXPECT_EQ(strip().text(), QString());
    EXPECT_FALSE(tryAgain()->isVisible());
    std::filesystem::permissions(
        m_store.folder(), std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec |
                              std::filesystem::perms::group_read | std::filesystem::perms::group_exec |
                              std::filesystem::perms::others_read | std::filesystem::perms::others_exec);
    {
        const OtherUser nobody(kNobody);
        enter(control<QLineEdit>("trackName"));
        type(u"German"_s);
        clickRow(u"Beta"_s);
        m_manager->waitForFileTasks();
        ASSERT_TRUE(waitFor([&] { return !strip().text().isEmpty(); }));
        EXPECT_TRUE(strip().toolTip().contains(u"Alpha"_s)) << strip().toolTip().toStdString();
        EXPECT_EQ(strip().text(),
                  u"“Alpha” is not saved: Permission denied. Ask for the right to change files in %1, then "
                  "try again."_s.arg(QString::fromStdString(m_store.folder().string())));
        EXPECT_EQ(form()->geometry(), before) << "nothing moves";
        click(tryAgain());
        m_manager->waitForFileTasks();
        turn();
        EXPECT_FALSE(strip().text().isEmpty());
    }
    std::filesystem::permissions(m_store.folder(), std::filesystem::perms::owner_all);
    click(tryAgain());
    ASSERT_TRUE(waitFor([&] { return strip().text().isEmpty(); }));
    EXPECT_FALSE(tryAgain()->isVisible());
    EXPECT_EQ(onDisk("Alpha")->audioSettings().first()->trackName(), u"German"_s);
}

TEST_F(Problems, OfFilesThatCantBeReadAreCountedAndGoWithThem)
{
    m_store.writePreset(u"Alpha"_s);
    ASSERT_TRUE(m_store.runElsewhere(u"echo '{' > Broken.json; echo nonsense > Worse.json"_s));
    open();
    EXPECT_TRUE(strip().text().startsWith(u"1 of 2: “"_s)) << strip().text().toStdString();
    EXPECT_TRUE(strip().text().endsWith(u"Correct the file or delete it; it is read again by itself."_s));
    EXPECT_EQ(strip().accessibleDescription().count(u'\n'), 1) << "all of them, one a line";
    ASSERT_TRUE(elsewhere(u"rm Worse.json; cp Alpha.json Broken.json"_s));
    EXPECT_TRUE(waitFor([&] { return strip().text().isEmpty(); }));
    m_controller->setShowsProblems(false);
    EXPECT_FALSE(strip().isVisible());
    EXPECT_FALSE(m_controller->showsProblems());
}

TEST_F(Problems, AFolderThatCantBeUsedIsSaidWithWhatToDo)
{
    ASSERT_TRUE(m_store.runElsewhere(u"rmdir ../*Presets; touch '../Streaming Presets'"_s));
    m_manager = std::make_shared<PresetsManager>([this] { return QStringList{m_store.dataDirectory()}; });
    openWindow();
    EXPECT_TRUE(strip().text().contains(u"Not a directory"_s)) << strip().text().toStdString();
    EXPECT_FALSE(tryAgain()->isVisible());
    std::filesystem::remove(m_store.folder());
    std::filesystem::create_directories(m_store.folder());
}

} // namespace
} // namespace vantle
