#include "commandline/command.h"
#include "commands/check.h"

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
    };
    return table;
}

} // namespace Corvelpro
