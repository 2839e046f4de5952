// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/ProblemStrip.h"

#include "VantlePresets/editor/BundleIcon.h"
#include "VantlePresets/editor/EditorStyle.h"
#include "VantlePresets/editor/FormLabel.h"
#include "VantlePresets/editor/GroupBox.h"

#include <QtCore/QFileInfo>
#include <QtGui/QAccessible>
#include <QtGui/QPainter>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyle>
#include <QtWidgets/QToolButton>

#include <array>
#include <system_error>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

/// What the user can do about a reason of the operating system's.
struct Remedy
{
    std::errc reason;
    const char *write; ///< when a file is to be saved or deleted
    const char *read;
};

constexpr std::array<Remedy, 5> kRemedies{{
    {std::errc::permission_denied,
     QT_TRANSLATE_NOOP("vantle::ProblemStrip", "Ask for the right to change files in %1, then try again."),
     QT_TRANSLATE_NOOP("vantle::ProblemStrip", "Ask for the right to read this file.")},
    {std::errc::operation_not_permitted,
     QT_TRANSLATE_NOOP("vantle::ProblemStrip",
                       "The file or its folder is protected; lift that, then try again."),
     QT_TRANSLATE_NOOP("vantle::ProblemStrip", "The file or its folder is protected; lift that.")},
    {std::errc::read_only_file_system,
     QT_TRANSLATE_NOOP("vantle::ProblemStrip", "Make the disk writable, then try again."), nullptr},
    {std::errc::no_space_on_device,
     QT_TRANSLATE_NOOP("vantle::ProblemStrip", "Free some space on the disk, then try again."), nullptr},
    {std::errc::file_too_large,
     QT_TRANSLATE_NOOP("vantle::ProblemStrip", "Shorten the preset or raise the limit, then try again."),
     nullptr},
}};

QString remedyFor(const PresetsFailure &failure)
{
    const bool isLoad = failure.operation == PresetsFailure::Operation::load;
    for (const Remedy &remedy : kRemedies) {
        const char *const text = isLoad ? remedy.read : remedy.write;
        if (text &&
            failure.reason.contains(QString::fromStdString(std::make_error_code(remedy.reason).message())))
            return ProblemStrip::tr(text).replace("%1"_L1, QFileInfo(failure.path).path());
    }
    return isLoad ? ProblemStrip::tr("Correct the file or delete it; it is read again by itself.")
                  : QString();
}

QString sentence(const PresetsFailure &failure)
{
    using Operation = PresetsFailure::Operation;
    QString what;
    switch (failure.operation) {
    case Operation::load:
        what = ProblemStrip::tr("“%1” can't be read: %2.");
        break;
    case Operation::save:
        what = ProblemStrip::tr("“%1” is not saved: %2.");
        break;
    case Operation::deletion:
        what = ProblemStrip::tr("“%1” is not deleted: %2.");
        break;
    }
    const QString text = what.arg(failure.name, failure.reason);
    const QString remedy = remedyFor(failure);
    return remedy.isEmpty() ? text : QString(text + u' ' + remedy);
}

} // namespace

ProblemStrip::ProblemStrip(const std::shared_ptr<PresetsManager> &manager, QWidget *parent)
    : QWidget(parent), m_manager(manager), m_text(new FormLabel(FormLabel::Role::notice)),
      m_tryAgain(new QPushButton(tr("Try Again"))),
      m_close(makeIconButton(dimmedBundleSymbol(u"xmark.circle.fill"_s), tr("Close"), u"closeProblems"_s))
{
    setObjectName(u"problems"_s);
    GroupBox::announceAsGroup(this);
    m_tryAgain->setObjectName(u"tryAgain"_s);
    m_tryAgain->setAccessibleName(m_tryAgain->text());
    m_tryAgain->setAutoDefault(false);
    auto *line = new QHBoxLayout(this);
    line->setContentsMargins(kInRow, kInRow / 2, kInRow, kInRow / 2);
    line->setSpacing(kInRow);
    line->addSpacing(warningSignWidth(m_text->font()));
    line->addWidget(m_text, 1);
    line->addWidget(m_tryAgain);
    line->addWidget(m_close);
    QSizePolicy reserved = m_tryAgain->sizePolicy();
    reserved.setRetainSizeWhenHidden(true); // the button may be higher than the text
    m_tryAgain->setSizePolicy(reserved);
    connect(m_tryAgain, &QPushButton::clicked, this, &ProblemStrip::tryAgain);
    connect(m_close, &QToolButton::clicked, this, &ProblemStrip::clearNotices);
    connect(manager.get(), &PresetsManager::startFailed, this, &ProblemStrip::showProblems);
    connect(manager.get(), &PresetsManager::didLoad, this, &ProblemStrip::showProblems);
    connect(manager.get(), &PresetsManager::failed, this, &ProblemStrip::showProblems);
    connect(manager.get(), &PresetsManager::recovered, this, &ProblemStrip::showProblems);
    showProblems();
}

void ProblemStrip::addNotice(const QString &text)
{
    m_notices.append(text);
    showProblems();
}

void ProblemStrip::clearNotices()
{
    m_notices.clear();
    showProblems();
}

QString ProblemStrip::text() const
{
    return m_text->text();
}

QStringList ProblemStrip::problems() const
{
    QStringList all;
    if (const auto error = m_manager->startError())
        all.append(
            tr("%1. Nothing is saved until this folder can be used and the application is started again.")
                .arg(*error));
    for (const PresetsFailure &failure : m_manager->failures())
        all.append(sentence(failure));
    return all + m_notices;
}

void ProblemStrip::showProblems()
{
    const QStringList all = problems();
    QString text = all.isEmpty() ? QString() : all.last();
    if (all.size() > 1) // first, since the end of a long text is elided
        text = tr("1 of %1: %2").arg(QString::number(all.size()), text);
    const bool isNews = text != m_text->text() && !text.isEmpty();
    m_text->setText(text);
    setToolTip(toolTipFor(all.join(u'\n')));
    m_tryAgain->setVisible(!m_manager->failures().isEmpty());
    m_close->setVisible(!m_notices.isEmpty());
    setAccessibleName(text);
    setAccessibleDescription(all.join(u'\n'));
    if (isNews) {
        QAccessibleEvent alert(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
    update();
}

void ProblemStrip::tryAgain()
{
    for (const PresetsFailure &failure : m_manager->failures())
        m_manager->retry(failure);
}

void ProblemStrip::paintEvent(QPaintEvent *)
{
    if (m_text->text().isEmpty())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(mixed(palette().color(QPalette::Window), filmTint(), 0.18));
    painter.drawRoundedRect(rect(), 6, 6);
    const int side = QFontMetrics(m_text->font()).height();
    const QRect place =
        QStyle::visualRect(layoutDirection(), rect(), QRect(kInRow, (height() - side) / 2, side, side));
    paintWarningSign(painter, place.topLeft(), m_text->font());
}

} // namespace vantle
