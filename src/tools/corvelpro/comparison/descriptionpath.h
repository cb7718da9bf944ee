// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <QString>
#include <QVector>

#include <optional>

namespace Corvelpro {

/// Leads from the root of a description to one of its values: "network.mac", "slots[2].type", "slots[*].serial".
/// Members follow each other with a dot; "[2]" is an element of an array; "[*]" is each element, or each member. A name
/// with other characters than letters, digits, "_" and "-" is written as a JSON string in brackets: ["a.b"].
class DescriptionPath
{
public:
    struct Step
    {
        enum class Kind { Member, Element, Any };

        Kind kind = Kind::Any;
        QString name;
        int index = 0;
    };

    /// None if `text` is not such a path; `reason` says why.
    static std::optional<DescriptionPath> parse(const QString &text, QString *reason);

    void enter(const QString &member) { m_steps.append({Step::Kind::Member, member, 0}); }
    void enter(int element) { m_steps.append({Step::Kind::Element, QString(), element}); }
    void leave() { m_steps.removeLast(); }

    /// True if `path`, which has no "[*]", leads to the same value.
    bool matches(const DescriptionPath &path) const;

    /// As parse() takes it; "(root)" for a path without a step.
    QString text() const;

private:
    QVector<Step> m_steps;
};

} // namespace Corvelpro
