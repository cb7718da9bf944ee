#include "commandline/command.h"
#include "commands/check.h"
#include "commands/doctor.h"
#include "commands/info.h"
#include "commands/list.h"
#include "commands/verify.h"

namespace Corvelpro {

const QVector<Command> &commandTable()
{
    using Count = Positional::Count;
    static const Positional directory = {"DIR", "A folder, by default that of the project files", Count::Optional};
    static const QVector<Command> table = {
        {"list",
         "List the projects of a folder as the control application does",
         "Prints for each project, newest first, its name, the time of its last change, its size, how many pictures "
         "and "
         "presets it contains, and its comment. What is missing here \"corvelpro doctor\" explains. Changes nothing: "
         "the control application also tidies the folder when it looks into it.",
         {directory},
         {},
         runList},
        {"info",
         "Show what a file says about itself and contains",
         "Prints the record, the plain members at the top of the device description, the pictures with their size, the "
         "presets, and the entries that no load to an online device uses.",
         {{"FILE", "A project file", Count::One}},
         {},
         runInfo},
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
        {"doctor",
         "Explain which files of a folder are not listed, and what to do",
         "Prints each file that the control application leaves out, that it lists under another name than its own, or "
         "that an interrupted operation has left, and which project name it blocks. Changes nothing.",
         {directory},
         {},
         runDoctor},
    };
    return table;
}

} // namespace Corvelpro
