// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/VantleView.h"

#include "VantlePresets/editor/BundleIcon.h"
#include "VantlePresets/editor/EditHistory.h"
#include "VantlePresets/editor/EditorStyle.h"
#include "VantlePresets/editor/FormLabel.h"
#include "VantlePresets/editor/HLSPresetView.h"
#include "VantlePresets/editor/MainThread.h"
#include "VantlePresets/editor/NotificationCenter.h"
#include "VantlePresets/editor/PresetsListView.h"
#include "VantlePresets/editor/ProblemStrip.h"
#include "VantlePresets/editor/RTMPPresetView.h"
#include "VantlePresets/editor/SRTPresetView.h"
#include "VantlePresets/editor/YouTubeFacebookPresetView.h"

#include <QtCore/QEvent>
#include <QtCore/QMimeData>
#include <QtCore/QPointer>
#include <QtCore/QThreadPool>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QDropEvent>
#include <QtGui/QPainter>
#include <QtGui/QShortcut>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QStackedWidget>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QVBoxLayout>

#include <array>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

constexpr int kSidebarMinimum = 220;
constexpr int kSidebarIdeal = 260;
constexpr int kSidebarMaximum = 320;
constexpr QSize kDetailMinimum(820, 560);
constexpr int kDetailIdeal = 960;

/// A shade apart from the form beside it, with a line between the two.
class Sidebar : public QWidget
{
protected:
    void paintEvent(QPaintEvent *) override
    {
        const QColor window = palette().color(QPalette::Window);
        const QColor text = palette().color(QPalette::WindowText);
        QPainter painter(this);
        painter.fillRect(rect(), mixed(window, text, 0.025));
        const int x = layoutDirection() == Qt::LeftToRight ? width() - 1 : 0;
        painter.fillRect(x, 0, 1, height(), mixed(window, text, 0.13));
    }
};

template <class View, class Preset>
PresetFormView *makeForm(const std::shared_ptr<VantlePreset> &preset, QWidget *parent)
{
    return new View(presetAs<Preset>(preset), parent);
}

template <class Preset>
void requireClass(const std::shared_ptr<VantlePreset> &preset)
{
    static_cast<void>(presetAs<Preset>(preset));
}

/// The form of each kind, and the class that its presets must have.
struct KindForm
{
    StreamingType type;
    PresetFormView *(*make)(const std::shared_ptr<VantlePreset> &, QWidget *);
    void (*requireClass)(const std::shared_ptr<VantlePreset> &);
};

constexpr auto kMakeRTMP = &makeForm<RTMPPresetView, RTMPVantlePreset>;
constexpr auto kMakeYouTubeFacebook = &makeForm<YouTubeFacebookPresetView, RTMPVantlePreset>;
constexpr auto kRequireRTMP = &requireClass<RTMPVantlePreset>;

constexpr std::array<KindForm, 6> kKindForms{{
    {StreamingType::hls, &makeForm<HLSPresetView, HLSVantlePreset>, &requireClass<HLSVantlePreset>},
    {StreamingType::youTube, kMakeYouTubeFacebook, kRequireRTMP},
    {StreamingType::rtmp, kMakeRTMP, kRequireRTMP},
    {StreamingType::wowza, kMakeRTMP, kRequireRTMP},
    {StreamingType::facebook, kMakeYouTubeFacebook, kRequireRTMP},
    {StreamingType::srt, &makeForm<SRTPresetView, SRTVantlePreset>, &requireClass<SRTVantlePreset>},
}};

const KindForm &kindForm(StreamingType type)
{
    for (const KindForm &kind : kKindForms) {
        if (kind.type == type)
            return kind;
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

    auto *columns = new QSplitter(this);
    columns->setChildrenCollapsible(false);
    columns->setHandleWidth(1);
    columns->addWidget(makeSidebar());
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
    setAcceptDrops(true);
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
    add(QKeySequence(Qt::CTRL | Qt::Key_F), &VantleView::openFind);
    // Elsewhere the toolkit does this by itself.
    add(QKeySequence(Qt::SHIFT | Qt::Key_F10), [this] {
        QWidget *const focus = focusWidget() ? focusWidget() : this;
        const QPoint position = focus->rect().center();
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, position, focus->mapToGlobal(position));
        QCoreApplication::sendEvent(focus, &menu);
    });
}

QWidget *VantleView::makeSidebar()
{
    m_sidebar = new Sidebar;
    m_sidebar->setMinimumWidth(kSidebarMinimum);
    m_sidebar->setMaximumWidth(kSidebarMaximum);
    m_list = new PresetsListView(m_manager);
    auto *layout = new QVBoxLayout(m_sidebar);
    layout->setContentsMargins(0, kInRow, 0, kInRow);
    layout->setSpacing(kInRow);
    layout->addWidget(makeFindField());
    layout->addWidget(m_list, 1);
    auto *below = new QHBoxLayout;
    below->setContentsMargins(kBetweenRows, 0, kBetweenRows, 0);
    below->addWidget(makeAddButton());
    below->addStretch();
    layout->addLayout(below);
    return m_sidebar;
}

QWidget *VantleView::makeFindField()
{
    auto *line = new QWidget;
    auto *layout = new QHBoxLayout(line);
    layout->setContentsMargins(kInRow, 0, kInRow, 0);
    m_find = new QLineEdit;
    m_find->setObjectName(u"find"_s);
    m_find->setAccessibleName(tr("Find Presets"));
    m_find->setPlaceholderText(tr("Name or kind"));
    m_find->setClearButtonEnabled(true);
    layout->addWidget(m_find);
    line->hide();
    connect(m_find, &QLineEdit::textChanged, m_list, &PresetsListView::setFilter);
    connect(m_list, &PresetsListView::filterMustEnd, this, &VantleView::closeFind);
    // In the list, too; not while the field is hidden, when the key is the host's.
    m_endFind = new QShortcut(QKeySequence(Qt::Key_Escape), m_sidebar);
    m_endFind->setContext(Qt::WidgetWithChildrenShortcut);
    m_endFind->setEnabled(false);
    connect(m_endFind, &QShortcut::activated, this, [this] {
        closeFind();
        m_list->setFocus();
    });
    auto *down = new QShortcut(QKeySequence(Qt::Key_Down), line);
    down->setContext(Qt::WidgetWithChildrenShortcut);
    connect(down, &QShortcut::activated, m_list, &PresetsListView::goToShown);
    connect(m_find, &QLineEdit::returnPressed, m_list, &PresetsListView::goToShown);
    return line;
}

void VantleView::openFind()
{
    m_sidebar->show();
    m_find->parentWidget()->show();
    m_endFind->setEnabled(true);
    m_find->setFocus(Qt::ShortcutFocusReason);
    m_find->selectAll();
}

void VantleView::closeFind()
{
    if (m_find->parentWidget()->isHidden())
        return;
    const bool hadFocus = m_find->hasFocus();
    m_find->parentWidget()->hide();
    m_endFind->setEnabled(false);
    m_find->clear();
    if (hadFocus)
        m_list->setFocus();
}

QToolButton *VantleView::makeAddButton()
{
    auto *menu = new QMenu(this);
    for (const StreamingType type : streamingTypes().values()) {
        const QString label = displayName(type);
        connect(menu->addAction(bundleIcon(label), label), &QAction::triggered, this,
                [this, type] { addPreset(type); });
    }
    auto *button = makeIconButton(bundleSymbol(u"plus"_s), tr("Add Preset"), u"addPreset"_s);
    // Not the button's own menu: that one would be run in an event loop of its own.
    connect(button, &QToolButton::clicked, menu,
            [button, menu] { menu->popup(button->mapToGlobal(QPoint(0, -menu->sizeHint().height()))); });
    return button;
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
    m_detail->installEventFilter(this);
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

void VantleView::addPreset(StreamingType type)
{
    closeFind();
    m_list->endNameEdit();
    saveBeforeLeaving(*m_manager);
    m_manager->addNewPreset(type);
    NotificationCenter::defaultCenter().post(kFocusPresetsListNotification);
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
    const KindForm &kind = kindForm(preset->type());
    kind.requireClass(preset);
    PresetFormView *&form = m_forms[kind.make];
    if (form) {
        form->setPreset(preset);
    } else {
        form = kind.make(preset, m_detail);
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
    const auto *widget = qobject_cast<const QWidget *>(watched);
    if (widget && (widget == this || isAncestorOf(widget)) && takeDrop(event))
        return true;
    if (watched == m_detail && event->type() == QEvent::Resize)
        QMetaObject::invokeMethod(this, &VantleView::alignTitle, Qt::QueuedConnection);
    return QWidget::eventFilter(watched, event);
}

/// Files are imported wherever they are dropped, and no field takes them for text.
bool VantleView::takeDrop(QEvent *event)
{
    const bool isDrop = event->type() == QEvent::Drop;
    if (!isDrop && event->type() != QEvent::DragEnter && event->type() != QEvent::DragMove)
        return false;
    auto *drag = static_cast<QDropEvent *>(event); // the other two are such events, too
    QList<QUrl> files = drag->mimeData()->urls();
    files.removeIf([](const QUrl &url) { return !url.isLocalFile(); });
    if (files.isEmpty())
        return false;
    drag->setDropAction(Qt::CopyAction);
    drag->accept();
    if (isDrop)
        importFiles(files);
    return true;
}

void VantleView::importFiles(const QList<QUrl> &files)
{
    std::vector<std::filesystem::path> paths;
    for (const QUrl &url : files)
        paths.emplace_back(url.toLocalFile().toStdString());
    // The application waits for the pool when it ends.
    QThreadPool::globalInstance()->start([view = QPointer<VantleView>(this), paths] {
        QList<PresetImport> imports = readPresetsToImport(paths);
        QMetaObject::invokeMethod(
            qApp,
            [view, imports = std::move(imports)] {
                if (view)
                    view->finishImport(imports);
            },
            Qt::QueuedConnection);
    });
}

void VantleView::finishImport(QList<PresetImport> imports)
{
    m_list->endNameEdit();
    closeFind();
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
    m_list->endNameEdit();
    m_manager->saveSelectedPreset();
}

/// A name that is being edited stays in edit; what else was edited had been saved before it.
void VantleView::saveWhenLeft(Qt::ApplicationState state)
{
    if (state != Qt::ApplicationActive && !m_list->isNameEdited())
        saveBeforeLeaving(*m_manager);
}

} // namespace vantle
