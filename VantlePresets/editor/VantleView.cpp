// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/VantleView.h"

#include "VantlePresets/editor/BundleIcon.h"
#include "VantlePresets/editor/DroppedFiles.h"
#include "VantlePresets/editor/EditHistory.h"
#include "VantlePresets/editor/EditorStyle.h"
#include "VantlePresets/editor/FormLabel.h"
#include "VantlePresets/editor/HLSPresetView.h"
#include "VantlePresets/editor/MainThread.h"
#include "VantlePresets/editor/PresetsListView.h"
#include "VantlePresets/editor/ProblemStrip.h"
#include "VantlePresets/editor/RTMPPresetView.h"
#include "VantlePresets/editor/SRTPresetView.h"
#include "VantlePresets/editor/Sidebar.h"
#include "VantlePresets/editor/YouTubeFacebookPresetView.h"

#include <QtCore/QEvent>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QShortcut>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QStackedWidget>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QVBoxLayout>

#include <array>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

constexpr int kSidebarIdeal = 260;
constexpr QSize kDetailMinimum(820, 560);
constexpr int kDetailIdeal = 960;

/// Shows the preset in the form, or in a new one for want of one. Its class must be that of its kind.
template <class View, class Preset>
PresetFormView *showIn(PresetFormView *form, const std::shared_ptr<VantlePreset> &preset, QWidget *parent)
{
    const auto own = presetAs<Preset>(preset);
    if (!form)
        return new View(own, parent);
    form->setPreset(own);
    return form;
}

using ShowInForm = PresetFormView *(*)(PresetFormView *, const std::shared_ptr<VantlePreset> &, QWidget *);

constexpr ShowInForm kShowRTMP = &showIn<RTMPPresetView, RTMPVantlePreset>;
constexpr ShowInForm kShowYouTubeFacebook = &showIn<YouTubeFacebookPresetView, RTMPVantlePreset>;

/// The form of each kind, with the class of its presets.
constexpr std::array<std::pair<StreamingType, ShowInForm>, 6> kKindForms{{
    {StreamingType::hls, &showIn<HLSPresetView, HLSVantlePreset>},
    {StreamingType::youTube, kShowYouTubeFacebook},
    {StreamingType::rtmp, kShowRTMP},
    {StreamingType::wowza, kShowRTMP},
    {StreamingType::facebook, kShowYouTubeFacebook},
    {StreamingType::srt, &showIn<SRTPresetView, SRTVantlePreset>},
}};

ShowInForm formOf(StreamingType type)
{
    for (const auto &[kind, show] : kKindForms) {
        if (kind == type)
            return show;
    }
    programmingFault("unknown StreamingType value");
}

/// Asks the focused widget of the active window, or else the first of its parents that knows how, to show
/// or hide the sidebar.
void performToggleSidebar()
{
    const QWidget *window = QApplication::activeWindow();
    for (QWidget *w = window ? window->focusWidget() : nullptr; w; w = w->parentWidget()) {
        if (w->metaObject()->indexOfMethod("toggleSidebar()") >= 0) {
            QMetaObject::invokeMethod(w, "toggleSidebar");
            return;
        }
    }
}

bool isRealWindow(const QObject *object)
{
    const auto *widget = qobject_cast<const QWidget *>(object);
    return widget && (widget->windowType() == Qt::Window || widget->windowType() == Qt::Dialog);
}

} // namespace

VantleView::VantleView(const std::shared_ptr<PresetsManager> &presetsManager, QWidget *parent)
    : QWidget(parent), m_manager(presetsManager)
{
    requireMainThread();
    if (!presetsManager)
        programmingFault("an editor without a presets manager");
    m_history = new EditHistory(presetsManager, this);
    m_sidebar = new Sidebar(presetsManager);

    auto *columns = new QSplitter(this);
    columns->setChildrenCollapsible(false);
    columns->setHandleWidth(1);
    columns->addWidget(m_sidebar);
    columns->addWidget(makeDetail());
    columns->setStretchFactor(1, 1);
    columns->setSizes({kSidebarIdeal, kDetailIdeal});
    m_sidebar->lower(); // assistive programs read in the order of the children
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(columns);

    connect(m_manager.get(), &PresetsManager::selectedPresetChanged, this,
            &VantleView::showSelectedPresetSoon);
    connect(m_history, &EditHistory::presetWillChange, this, [this] {
        if (auto *form = qobject_cast<PresetFormView *>(m_detail->currentWidget()))
            form->showHintsSoon();
    });
    connect(qApp, &QCoreApplication::aboutToQuit, this, &VantleView::saveBeforeEnd);
    connect(qApp, &QGuiApplication::applicationStateChanged, this, &VantleView::saveWhenLeft);
    qApp->installEventFilter(this);
    connect(new DroppedFiles(this), &DroppedFiles::read, this, &VantleView::importFiles);
    makeShortcuts();
    showSelectedPreset();
}

void VantleView::makeShortcuts()
{
    const auto add = [this](const QKeySequence &key, auto action) {
        auto *shortcut = new QShortcut(key, this);
        connect(shortcut, &QShortcut::activated, this, action);
    };
    for (const QKeySequence &key : QKeySequence::keyBindings(QKeySequence::Undo))
        add(key, [this] { m_history->undo(); });
    for (const QKeySequence &key : QKeySequence::keyBindings(QKeySequence::Redo))
        add(key, [this] { m_history->redo(); });
    add(QKeySequence(Qt::CTRL | Qt::Key_F), [this] { m_sidebar->openFind(); });
    // Elsewhere the toolkit does this by itself.
    add(QKeySequence(Qt::SHIFT | Qt::Key_F10), [this] {
        QWidget *const focus = focusWidget() ? focusWidget() : this;
        const QPoint position = focus->rect().center();
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, position, focus->mapToGlobal(position));
        QCoreApplication::sendEvent(focus, &menu);
    });
}

QWidget *VantleView::makeDetail()
{
    auto *sidebarButton =
        makeIconButton(bundleSymbol(u"sidebar.leading"_s), tr("Toggle Sidebar"), u"toggleSidebar"_s);
    connect(sidebarButton, &QToolButton::clicked, this, &performToggleSidebar);

    m_title = new FormLabel(FormLabel::Role::title);
    auto *placeholder = new FormLabel(FormLabel::Role::placeholder, tr("Please Select a Preset"));
    placeholder->setAlignment(Qt::AlignCenter);
    m_placeholder = placeholder;
    m_detail = new QStackedWidget;
    m_detail->addWidget(m_placeholder);

    auto *detail = new QWidget;
    detail->setMinimumSize(kDetailMinimum);
    auto *layout = new QVBoxLayout(detail);
    layout->setContentsMargins(0, kInRow, 0, 0);
    layout->setSpacing(0);
    m_header = new QWidget;
    auto *header = new QHBoxLayout(m_header);
    header->setContentsMargins(kAround, 0, kAround, 0);
    header->setSpacing(kInRow);
    header->addWidget(sidebarButton);
    m_beforeTitle = new QSpacerItem(0, 0, QSizePolicy::Fixed);
    header->addItem(m_beforeTitle);
    header->addWidget(m_title, 1);
    layout->addWidget(m_header);
    m_problems = new ProblemStrip(m_manager);
    auto *strip = new QHBoxLayout;
    strip->setContentsMargins(kAround, kInRow / 2, kAround, 0);
    strip->addWidget(m_problems);
    layout->addLayout(strip);
    layout->addWidget(m_detail, 1);
    return detail;
}

void VantleView::toggleSidebar()
{
    requireMainThread();
    m_sidebar->setVisible(m_sidebar->isHidden());
}

void VantleView::setShowsConnectionRows(bool shows)
{
    requireMainThread();
    m_showsConnectionRows = shows;
    for (PresetFormView *form : std::as_const(m_forms))
        form->setShowsConnectionRows(shows);
}

void VantleView::setShowsProblems(bool shows)
{
    requireMainThread();
    m_problems->setVisible(shows);
}

bool VantleView::showsProblems() const
{
    return !m_problems->isHidden();
}

/// The title stands over the column of the form, however wide the window is.
void VantleView::alignTitle()
{
    const auto *form = qobject_cast<PresetFormView *>(m_detail->currentWidget());
    const int button = m_header->layout()->itemAt(0)->sizeHint().width() + kInRow;
    const int column = form ? form->columnLeft() - kAround : 0;
    m_beforeTitle->changeSize(std::max(0, column - button - kInRow), 0, QSizePolicy::Fixed);
    m_header->layout()->invalidate();
}

/// The selection often goes away only to come back (a rename does that), in the middle of a click in the
/// form: what is shown follows when the event loop turns.
void VantleView::showSelectedPresetSoon()
{
    if (m_isShowDue)
        return;
    m_isShowDue = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_isShowDue = false;
            showSelectedPreset();
        },
        Qt::QueuedConnection);
}

void VantleView::showSelectedPreset()
{
    const auto preset = m_manager->selectedPreset();
    m_history->setPreset(preset);
    if (preset != m_shown) {
        if (m_shown)
            m_shown->disconnect(this);
        m_shown = preset;
        if (preset) {
            connect(preset.get(), &VantlePreset::nameChanged, this, &VantleView::showTitle);
            // A file's change of kind within a class changes the form; it brings new lists with it.
            connect(preset.get(), &VantlePreset::audioSettingsChanged, this,
                    &VantleView::showSelectedPresetSoon);
        }
    }
    showTitle();
    if (!preset) {
        m_detail->setCurrentWidget(m_placeholder);
        return;
    }
    const ShowInForm show = formOf(preset->type());
    PresetFormView *&form = m_forms[show];
    const bool isNew = !form;
    form = show(form, preset, m_detail);
    if (isNew) {
        form->setShowsConnectionRows(m_showsConnectionRows);
        m_detail->addWidget(form);
    }
    m_detail->setCurrentWidget(form);
    alignTitle();
}

void VantleView::showTitle()
{
    const QString title = m_shown ? m_shown->name() : u"Vantle"_s;
    m_title->setText(title);
    // In window titles this stands for a mark of unsaved changes.
    setWindowTitle(QString(title).replace("[*]"_L1, "[*][*]"_L1));
}

bool VantleView::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Close && isRealWindow(watched))
        saveBeforeEnd();
    if (watched == m_detail && event->type() == QEvent::Resize)
        QMetaObject::invokeMethod(this, &VantleView::alignTitle, Qt::QueuedConnection);
    return QWidget::eventFilter(watched, event);
}

void VantleView::importFiles(QList<PresetImport> imports)
{
    m_sidebar->list()->endNameEdit();
    m_sidebar->closeFind();
    m_problems->clearNotices();
    addImportedPresets(*m_manager, imports);
    std::shared_ptr<VantlePreset> first;
    for (const PresetImport &import : std::as_const(imports)) {
        const QString path = QString::fromStdString(import.path.native());
        if (!import.preset)
            m_problems->addNotice(path + ": "_L1 + import.refusal);
        else if (!first)
            first = import.preset;
    }
    if (!first)
        return;
    saveBeforeLeaving(*m_manager);
    m_manager->setSelectedPreset(first);
}

void VantleView::saveBeforeEnd()
{
    m_sidebar->list()->endNameEdit();
    m_manager->saveSelectedPreset();
}

/// A name that is being edited stays in edit; what else was edited had been saved before it.
void VantleView::saveWhenLeft(Qt::ApplicationState state)
{
    if (state != Qt::ApplicationActive && !m_sidebar->list()->isNameEdited())
        saveBeforeLeaving(*m_manager);
}

} // namespace vantle
