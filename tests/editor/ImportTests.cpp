// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/ProblemStrip.h"
#include "tests/editor/OpenEditor.h"

#include <QtCore/QMimeData>
#include <QtGui/QDropEvent>
#include <QtWidgets/QToolButton>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;
using test::namesOf;
using test::waitFor;

class Import : public test::OpenEditor
{
protected:
    /// Whether the window takes what is dropped on the widget.
    static bool drop(QWidget *target, const QList<QUrl> &urls)
    {
        QMimeData data;
        data.setUrls(urls);
        const QPoint at = target->rect().center();
        QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(target, &enter);
        QDropEvent dropped(at, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(target, &dropped);
        return enter.isAccepted();
    }

    [[nodiscard]] QUrl outside(const std::string &name) const
    {
        return QUrl::fromLocalFile(m_store.dataDirectory() + u'/' + QString::fromStdString(name));
    }
};

TEST_F(Import, TakesFilesThatAreDroppedAnywhereAndSaysWhatItRefuses)
{
    m_store.writePreset(u"Alpha"_s);
    ASSERT_TRUE(m_store.runElsewhere(u"cp Alpha.json ../../Zulu.json; cp Alpha.json ../../Alpha.json;"
                                     "mkdir -p ../../more; cp Alpha.json ../../more/Zulu.json;"
                                     "echo '{' > ../../Broken.json"_s));
    open();
    clickRow(u"Alpha"_s);
    auto *field = control<QLineEdit>("trackName");
    enter(field);
    type(u"Mine"_s);
    EXPECT_TRUE(drop(field, {outside("Zulu.json"), outside("Alpha.json"), outside("Broken.json"),
                             outside("more/Zulu.json"), outside("none.json")}));
    ASSERT_TRUE(waitFor([&] { return m_manager->presets().size() == 2; }));
    EXPECT_EQ(selectedName(), u"Zulu"_s);
    EXPECT_EQ(field->text().count(u"file:"_s), 0);
    auto &strip = *window().findChild<ProblemStrip *>();
    EXPECT_TRUE(strip.text().startsWith(u"1 of 4: "_s)) << strip.text().toStdString();
    EXPECT_TRUE(strip.text().endsWith(u"none.json: No such file or directory"_s))
        << strip.text().toStdString();
    EXPECT_EQ(strip.toolTip().count(u"exists"_s), 2) << strip.toolTip().toStdString();
    click(strip.findChild<QToolButton *>(u"closeProblems"_s));
    EXPECT_EQ(strip.text(), QString());
    EXPECT_EQ(onDisk("Alpha")->audioSettings().first()->trackName(), u"Mine"_s);
    EXPECT_TRUE(onDisk("Zulu"));
}

} // namespace
} // namespace vantle
