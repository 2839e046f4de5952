// SPDX-License-Identifier: MIT
#include "apps/vantlectl/PresetNames.h"

#include "apps/vantlectl/StoreSession.h"

#include "VantlePresets/core/Log.h"
#include "VantlePresets/store/NameRules.h"

namespace vantle::ctl {

using namespace Qt::StringLiterals;

QString nameFault(const QString &name)
{
    if (name.isEmpty())
        return u"a preset's name can't be empty"_s;
    if (name.contains(u'/'))
        return u"a preset's name can't hold \"/\""_s;
    if (name.startsWith(u'.'))
        return u"a name that begins with \".\" would be hidden"_s;
    if (escapedControls(name) != name)
        return u"a preset's name can't hold control characters or marks that turn the direction of a text"_s;
    return {};
}

QString nameForPreset(const std::string &text)
{
    const QString given = nameArgument(text);
    const QString name = trimmedName(given);
    if (const QString fault = nameFault(name); !fault.isEmpty())
        throw Refusal(fault);
    if (name != given)
        remark("note: the name is \""_L1 + name + "\", without the blanks around it"_L1);
    return name;
}

QString nameArgument(const std::string &text)
{
    if (!QByteArrayView(text).isValidUtf8())
        throw Refusal(u"the name of a preset has to be UTF-8"_s);
    return QString::fromStdString(text);
}

} // namespace vantle::ctl
