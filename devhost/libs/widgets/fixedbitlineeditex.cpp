// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include <widgets/fixedbitlineeditex.h>

#include <QTextBoundaryFinder>
#include <QValidator>

namespace Corvel {
namespace Widgets {

/// Cuts instead of rejecting: QLineEdit takes the validator's text before it emits a signal, so no one ever sees a text
/// beyond the limit.
class FixedBitLineEditEx::ByteLimit : public QValidator
{
public:
    using QValidator::QValidator;

    State validate(QString &text, int &cursor) const override
    {
        leaveOutForbidden(text, cursor);
        while (text.toUtf8().size() > maxByteCount) {
            const int end = cursor > 0 ? cursor : text.size();
            QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, text);
            characters.setPosition(end);
            const int begin = qMax(0, characters.toPreviousBoundary());
            text.remove(begin, end - begin);
            cursor = qMin(cursor, begin);
        }
        return Acceptable;
    }

    int maxByteCount = 64;

private:
    static void leaveOutForbidden(QString &text, int &cursor)
    {
        QString kept;
        int keptBeforeCursor = 0;
        bool hasBegun = false;
        for (int i = 0, length = 1; i < text.size(); i += length) {
            if (i == cursor)
                keptBeforeCursor = kept.size();
            const QChar character = text.at(i);
            const bool isPair = character.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
            length = isPair ? 2 : 1;
            if (!isPair && isForbidden(character, hasBegun))
                continue;
            kept.append(text.midRef(i, length));
            hasBegun = hasBegun || !character.isSpace();
        }
        cursor = cursor < text.size() ? keptBeforeCursor : kept.size();
        text = kept;
    }

    static bool isForbidden(QChar character, bool hasBegun)
    {
        return character.isSurrogate() || character.category() == QChar::Other_Control ||
               QStringLiteral("<>:\"/\\|?*").contains(character) || (!hasBegun && character == QLatin1Char('.'));
    }
};

FixedBitLineEditEx::FixedBitLineEditEx(QWidget *parent)
    : QLineEdit(parent)
    , m_limit(new ByteLimit(this))
{
    setValidator(m_limit);
    // Also emitted on focus loss. Connected first, so that all other receivers see the trimmed name.
    connect(this, &QLineEdit::editingFinished, this, [this] {
        if (text() != text().trimmed())
            setText(text().trimmed());
    });
}

void FixedBitLineEditEx::setEditText(const QString &text)
{
    setText(text);
}

int FixedBitLineEditEx::maxByteCount() const
{
    return m_limit->maxByteCount;
}

void FixedBitLineEditEx::setMaxByteCount(int bytes)
{
    m_limit->maxByteCount = bytes;
    QString cut = text();
    int cursor = cut.size();
    m_limit->validate(cut, cursor);
    setText(cut);
}

} // namespace Widgets
} // namespace Corvel
