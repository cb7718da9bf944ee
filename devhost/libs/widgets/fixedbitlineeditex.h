#pragma once

#include <widgets/widgets_global.h>

#include <QLineEdit>

namespace Corvel {
namespace Widgets {

/// Stands for the host's line edit for names of files, whose text is limited in bytes of UTF-8 as well.
///
/// Wherever the text comes from, it never holds what a file name cannot have on Windows (< > : " / \\ | ? * and control
/// characters), half a surrogate pair, or a dot with nothing but blanks before it: these are left out. Text beyond the
/// limit (64 bytes by default) is cut at whole characters: what was typed or pasted last goes first, so that an edit in
/// the middle never pushes out the end of the text. When the field is left, or Return pressed, blanks at both ends go.
///
/// Names that Windows keeps for devices (CON, NUL) pass, since longer ones begin with them; the system refuses them.
class HOST_WIDGETS_EXPORT FixedBitLineEditEx : public QLineEdit
{
    Q_OBJECT

public:
    explicit FixedBitLineEditEx(QWidget *parent = nullptr);

    /// Replaces the text, cut to the limit.
    void setEditText(const QString &text);
    int maxByteCount() const;
    void setMaxByteCount(int bytes);

private:
    class ByteLimit;

    ByteLimit *m_limit;
};

} // namespace Widgets
} // namespace Corvel
