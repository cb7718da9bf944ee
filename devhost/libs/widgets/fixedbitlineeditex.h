// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#pragma once

#include <widgets/widgets_global.h>

#include <QLineEdit>

namespace Corvel {
namespace Widgets {

/// Stands for the host's line edit for names of files, whose text is limited in bytes of UTF-8 as well.
///
/// Whatever the source of the text, it never contains characters that file names cannot have on Windows (< > : " / \\ |
/// ? * and control characters), half a surrogate pair, or a dot preceded only by blanks: these are dropped. Text beyond
/// the limit (64 bytes by default) is cut at whole characters, beginning with the text just typed or pasted, so an edit
/// in the middle never pushes out the end. Leaving the field or pressing Return trims blanks at both ends.
///
/// Names reserved by Windows (CON, NUL) are accepted, since longer names begin with them; the file system refuses them.
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
