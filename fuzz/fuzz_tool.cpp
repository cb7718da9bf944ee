// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

// Sends an archive through every command of the tool.
//
// The first byte selects the kind of input: 0 for the archive itself, 1 for the names of its entries, one a line, 2 for
// the contents of a description, a picture and a preset in an otherwise valid archive (see fuzzpackages.h).
#include "fuzzing.h"
#include "fuzzpackages.h"

#include <localecodec.h>

#include <tool/allcommands.h>

#include <csignal>
#include <sanitizer/common_interface_defs.h>

namespace {

/// In tmpfs. Emptied at the end.
class Folder
{
public:
    Folder() { FUZZ_VERIFY(mkdtemp(m_path)); }
    ~Folder() { QDir(path()).removeRecursively(); }
    Q_DISABLE_COPY(Folder)

    QString path() const { return QString::fromLatin1(m_path); }

private:
    char m_path[64] = "/dev/shm/projectfilecfg-fuzz-XXXXXX";
};

} // namespace

int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzzing::beQuiet();
    ProjectFileCfg::Internal::useUtf8LocaleCodec();
    std::signal(SIGPIPE, SIG_IGN);
    // While a command runs, what is written to stderr belongs to its messages.
    __sanitizer_set_report_fd(reinterpret_cast<void *>(std::intptr_t(dup(STDERR_FILENO))));
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const Folder folder;
    static ToolTesting::AllCommands commands(folder.path());
    if (size == 0)
        return 0;
    const QByteArray input(reinterpret_cast<const char *>(data + 1), int(size - 1));
    const QByteArray archive = data[0] == 1   ? Fuzzing::archiveOfNames(input)
                               : data[0] == 2 ? Fuzzing::archiveOfContents(input)
                                              : input;
    const QByteArray complaint = commands.complaintAbout(archive, size % 2 == 0, int(size));
    if (!complaint.isEmpty())
        std::fprintf(stderr, "%s\n", complaint.constData());
    FUZZ_VERIFY(complaint.isEmpty());
    return 0;
}
