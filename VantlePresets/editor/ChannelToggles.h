// SPDX-License-Identifier: MIT
#pragma once

#include <QtCore/QList>
#include <QtWidgets/QWidget>

class QCheckBox;
class QPushButton;

namespace vantle {

class FormLabel;

/// The choice of a track's source channels: 32 toggles in rows of equal length, and a button that clears
/// them. The list keeps the order in which the toggles were turned on.
class ChannelToggles : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kChannels = 32;

    explicit ChannelToggles(QWidget *parent = nullptr);

    /// Channels that have no toggle are kept, unseen, until the list is cleared.
    void showChannels(const QList<qint64> &channels);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override { return {width(), heightForWidth(width())}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {0, heightForWidth(width())}; }

Q_SIGNALS:
    /// The user's change, as the whole list.
    void channelsEdited(const QList<qint64> &channels);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void toggle(qint64 channel, bool isOn);
    [[nodiscard]] int columnsFor(int width) const;
    [[nodiscard]] QSize cellSize() const;

    QList<qint64> m_channels;
    FormLabel *m_caption;
    QList<QCheckBox *> m_toggles;
    QPushButton *m_clear;
};

} // namespace vantle
