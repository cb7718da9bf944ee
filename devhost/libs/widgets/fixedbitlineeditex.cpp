#include <widgets/fixedbitlineeditex.h>

#include <QTextBoundaryFinder>
#include <QValidator>

namespace Corvel {
namespace Widgets {

/// Cuts instead of refusing: the line edit takes over what a validator makes of its text, before it
/// emits a signal, so that nobody ever sees a text beyond the limit.
class FixedBitLineEditEx::ByteLimit : public QValidator
{
public:
    using QValidator::QValidator;

    State validate(QString &text, int &cursor) const override
    {
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
};

FixedBitLineEditEx::FixedBitLineEditEx(QWidget *parent)
    : QLineEdit(parent)
    , m_limit(new ByteLimit(this))
{
    setValidator(m_limit);
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
