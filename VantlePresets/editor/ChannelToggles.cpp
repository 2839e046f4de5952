// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/ChannelToggles.h"

#include "VantlePresets/editor/EditorStyle.h"
#include "VantlePresets/editor/FormLabel.h"
#include "VantlePresets/editor/GroupBox.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyle>

#include <algorithm>

namespace vantle {
namespace {

using namespace Qt::StringLiterals;

constexpr int kInset = 2;
constexpr int kBelowCaption = 3;

} // namespace

ChannelToggles::ChannelToggles(QWidget *parent)
    : QWidget(parent), m_caption(new FormLabel(FormLabel::Role::caption, tr("Source Channels"), this)),
      m_clear(nullptr)
{
    GroupBox::announceAsGroup(this);
    setAccessibleName(m_caption->text());
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);

    const QFont mini = fontOfSize(QApplication::font(), 11);
    for (int channel = 0; channel < kChannels; ++channel) {
        auto *toggle = new QCheckBox(QString::number(channel + 1), this);
        toggle->setAttribute(Qt::WA_MacMiniSize);
        toggle->setFont(mini);
        toggle->setObjectName(u"inputChannels"_s);
        toggle->setAccessibleName(toggle->text());
        connect(toggle, &QCheckBox::toggled, this,
                [this, channel](bool isOn) { this->toggle(channel, isOn); });
        m_toggles.append(toggle);
    }

    m_clear = new QPushButton(tr("Clear"), this);
    m_clear->setFont(mini);
    m_clear->setFixedWidth(m_clear->fontMetrics().horizontalAdvance(m_clear->text()) + 2 * kInRow);
    m_clear->setObjectName(u"inputChannels"_s);
    m_clear->setAccessibleName(m_clear->text());
    connect(m_clear, &QPushButton::clicked, this, [this] { Q_EMIT channelsEdited({}); });
}

void ChannelToggles::showChannels(const QList<qint64> &channels)
{
    m_channels = channels;
    for (qsizetype channel = 0; channel < m_toggles.size(); ++channel)
        m_toggles[channel]->setChecked(channels.contains(channel));
}

void ChannelToggles::toggle(qint64 channel, bool isOn)
{
    if (isOn == m_channels.contains(channel))
        return; // it shows what is held
    QList<qint64> channels = m_channels;
    if (!isOn)
        channels.removeAll(channel);
    else
        channels.append(channel);
    Q_EMIT channelsEdited(channels);
}

QSize ChannelToggles::cellSize() const
{
    const QSize widest = m_toggles.last()->sizeHint();
    return {widest.width() + 2 * kInset, widest.height() + 2 * kInset};
}

int ChannelToggles::columnsFor(int width) const
{
    // Rows of equal length, and room for the button behind the last of them.
    const int room = width - m_clear->minimumWidth() - kInRow;
    int columns = kChannels;
    while (columns > 1 && columns * cellSize().width() > room)
        columns /= 2;
    return columns;
}

int ChannelToggles::heightForWidth(int width) const
{
    const int lines = kChannels / columnsFor(width);
    const int grid = std::max(lines * cellSize().height(), m_clear->sizeHint().height());
    return m_caption->sizeHint().height() + kBelowCaption + grid;
}

void ChannelToggles::resizeEvent(QResizeEvent *)
{
    const auto place = [this](QWidget *widget, const QRect &r) {
        widget->setGeometry(QStyle::visualRect(layoutDirection(), rect(), r));
    };
    place(m_caption, QRect(QPoint(), m_caption->sizeHint()));
    const int top = m_caption->sizeHint().height() + kBelowCaption;
    const QSize cell = cellSize();
    const int columns = columnsFor(width());
    for (int i = 0; i < kChannels; ++i) {
        const QRect r(QPoint(i % columns * cell.width(), top + i / columns * cell.height()), cell);
        place(m_toggles[i], r.adjusted(kInset, kInset, -kInset, -kInset));
    }
    const QSize button(m_clear->minimumWidth(), m_clear->sizeHint().height());
    const int lastLine = top + (kChannels / columns - 1) * cell.height();
    const int y = std::max(top, lastLine + (cell.height() - button.height()) / 2);
    place(m_clear, QRect(QPoint(columns * cell.width() + kInRow, y), button));
}

} // namespace vantle
