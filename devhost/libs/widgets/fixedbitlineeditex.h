#pragma once

#include <widgets/widgets_global.h>

#include <QLineEdit>

namespace Corvel {
namespace Widgets {

/// Stands for the host's line edit whose text is limited in bytes of UTF-8, as the hardware's name fields are.
///
/// Text beyond the limit (64 bytes by default) is cut at whole characters, wherever it comes from: what was
/// typed or pasted last goes first, so that an edit in the middle never pushes out the end of the text.
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
