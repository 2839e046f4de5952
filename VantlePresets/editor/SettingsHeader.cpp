// SPDX-License-Identifier: MIT
#include "VantlePresets/editor/SettingsHeader.h"

#include "VantlePresets/editor/BundleIcon.h"
#include "VantlePresets/editor/EditorStyle.h"
#include "VantlePresets/editor/FormLabel.h"

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QToolButton>

namespace vantle {

using namespace Qt::StringLiterals;

SettingsHeader::SettingsHeader(const QIcon &symbol, const QString &list, QWidget *parent)
    : QWidget(parent), m_text(new FormLabel(FormLabel::Role::heading))
{
    auto *line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(kInRow);
    line->addWidget(new SymbolView(symbol));
    line->addWidget(m_text, 1);
    if (list.isEmpty())
        return;
    auto *remove = makeIconButton(dimmedBundleSymbol(u"xmark.circle.fill"_s), tr("Remove"), list);
    connect(remove, &QToolButton::clicked, this, &SettingsHeader::removeClicked);
    line->addWidget(remove);
}

void SettingsHeader::setText(const QString &text)
{
    m_text->setText(text);
}

} // namespace vantle
