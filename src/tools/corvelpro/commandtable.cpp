#include "commandline/command.h"
#include "commands/check.h"
#include "commands/verify.h"

namespace Corvelpro {

const QVector<Command> &commandTable()
{
    using Count = Positional::Count;
    static const QVector<Command> table = {
        {"check",
         "Tell whether the control application would list the files",
         "Compares the checksum in each file's record with the package. It covers only the first bytes of each 10 MiB: "
         "a valid package can still be damaged, which \"corvelpro verify\" finds.",
         {{"FILE", "A project file", Count::OneOrMore}},
         {},
         runCheck},
        {"verify",
         "Read the files to their last byte and look for damage",
         "Compares each entry's content with its length and CRC, its two headers with each other, the end of the "
         "archive "
         "with the end of the file; looks for bytes that belong to nothing and names that no load accepts; decodes "
         "each picture; reads the description and the lengths of the presets.\n\n"
         "No number in a package covers the name and the comment in its record: a change there is not found. Whether a "
         "package fits a device only the control application can tell.",
         {{"FILE", "A project file", Count::OneOrMore}},
         {},
         runVerify},
    };
    return table;
}

} // namespace Corvelpro
