// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "completions.h"
#include "manualpage.h"

#include <QDir>
#include <QSaveFile>
#include <QTextStream>

namespace {

bool write(const QDir &root, const QString &path, const QByteArray &text)
{
    QSaveFile file(root.filePath(path));
    return root.mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) && file.write(text) == text.size() &&
           file.commit();
}

} // namespace

/// Writes the manual page and the completions below a folder, each where an installation has it.
int main(int count, char **values)
{
    if (count != 2) {
        QTextStream(stderr) << "corvelpro_documents FOLDER\n";
        return 2;
    }
    const QDir root(QFile::decodeName(values[1]));
    const bool isWritten =
        write(root, QStringLiteral("man/man1/corvelpro.1"), Corvelpro::manualPage()) &&
        write(root, QStringLiteral("bash-completion/completions/corvelpro"), Corvelpro::bashCompletions()) &&
        write(root, QStringLiteral("zsh/site-functions/_corvelpro"), Corvelpro::zshCompletions()) &&
        write(root, QStringLiteral("fish/vendor_completions.d/corvelpro.fish"), Corvelpro::fishCompletions());
    if (!isWritten)
        QTextStream(stderr) << "corvelpro_documents: cannot write to " << root.path() << '\n';
    return isWritten ? 0 : 1;
}
