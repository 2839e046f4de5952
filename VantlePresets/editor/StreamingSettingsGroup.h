// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/FieldHints.h"
#include "VantlePresets/editor/GroupBox.h"
#include "VantlePresets/model/VantlePreset.h"

#include <array>

class QGridLayout;
class QToolButton;

namespace vantle {

class FormLabel;
class HintLabel;
struct PastedAddress;

/// The connection of a preset that reaches a server, a row for each field: those that every form of the kind
/// has, or all that the kind's files keep. Login and password are shown while the server wants them; secrets
/// are masked until they are asked for.
class StreamingSettingsGroup : public GroupBox
{
    Q_OBJECT

public:
    static constexpr int kRows = 9;

    explicit StreamingSettingsGroup(QWidget *parent = nullptr);

    /// Whether a preset of the kind has a row at all.
    [[nodiscard]] static bool hasRows(StreamingType type, bool all);

    void setPreset(const std::shared_ptr<VantlePreset> &preset);
    /// All that the kind's files keep. An address that is then pasted as the host fills the rows that it
    /// names.
    void setShowsAllRows(bool all);
    /// Shows under each row what there is for its field.
    void setHints(const FieldHints &hints);

private Q_SLOTS:
    void showPreset();

private:
    struct Row
    {
        FormLabel *caption;
        QWidget *control;
        QToolButton *reveal; ///< of secrets
        HintLabel *hint;
    };

    void makeRow(int number);
    QWidget *makeControl(int number);
    void makeReveal(Row &row);
    void write(int number, const QVariant &value);
    void takeHost(const QString &text);
    void takeAddress(const PastedAddress &address);
    void setIfShown(const char *property, const QVariant &value);
    void showHints();
    [[nodiscard]] bool isShown(int number) const;

    std::shared_ptr<VantlePreset> m_preset;
    FieldHints m_hints;
    bool m_showsAll = false;
    QGridLayout *m_grid;
    std::array<Row, kRows> m_rows{};
    QString m_host; ///< what the host's field held before its last change
};

} // namespace vantle
