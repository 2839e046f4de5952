// SPDX-License-Identifier: MIT
#pragma once

#include "VantlePresets/editor/GroupBox.h"
#include "VantlePresets/model/RTMPVantlePreset.h"

class QGridLayout;
class QToolButton;

namespace vantle {

class ChoiceBox;
class IntegerField;
class Switch;
class TextField;

/// The connection of a preset that pushes to a server: host, application, port, protocol, and login and
/// password while the server wants them.
class StreamingSettingsGroup : public GroupBox
{
    Q_OBJECT

public:
    explicit StreamingSettingsGroup(QWidget *parent = nullptr);

    void setPreset(const std::shared_ptr<RTMPVantlePreset> &preset);

private:
    void addRow(const QString &caption, const QString &property, QWidget *control, QWidget *beside = nullptr);
    void connectFields();
    void showPreset();
    void revealPassword(bool reveal);

    std::shared_ptr<RTMPVantlePreset> m_preset;
    QGridLayout *m_grid;
    TextField *m_host;
    TextField *m_application;
    IntegerField *m_port;
    ChoiceBox *m_protocol;
    Switch *m_authenticate;
    TextField *m_login;
    TextField *m_password;
    QToolButton *m_reveal;
    QList<QWidget *> m_credentials; ///< all that is shown while authentication is on
};

} // namespace vantle
