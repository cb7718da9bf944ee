// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

#include "commandline/command.h"
#include "commands/check.h"
#include "commands/copy.h"
#include "commands/create.h"
#include "commands/diff.h"
#include "commands/doctor.h"
#include "commands/edit.h"
#include "commands/extract.h"
#include "commands/info.h"
#include "commands/list.h"
#include "commands/thumbnail.h"
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
         "and presets it contains, and its comment. \"corvelpro doctor\" explains which files are missing. Changes "
         "nothing, unlike the control application, which also tidies the folder.",
         {directory},
         {},
         runList},
        {"info",
         "Show the record and the content of a project file",
         "Prints the record, the simple members at the top level of the device description, the pictures with their "
         "size, the presets, and the entries that no apply to an online device uses.",
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
         "archive with the end of the file; looks for bytes that belong to nothing and names that no apply accepts; "
         "decodes each picture; reads the description and the lengths of the presets.\n\nNo checksum covers the name "
         "and the comment in the record, so changes there are not found. Only the control application can tell whether "
         "a package fits a device.",
         {{"FILE", "A project file", Count::OneOrMore}},
         {},
         runVerify},
        {"doctor",
         "Explain which files of a folder are not listed, and what to do",
         "Prints each file that the control application does not list, or lists under another name, or that an "
         "interrupted operation has left behind, and the project name that it blocks. Changes nothing.",
         {directory},
         {},
         runDoctor},
        {"diff",
         "Compare two project files, or one with a device's directory",
         "Compares what a device would get: the description by its members, pictures by their pixels, presets and all "
         "other files by bytes. Times, order, compression, and the name and the comment of the project do not count. "
         "Exit code 0: equal; 1: different; 2: something could not be read, so there is no answer.\n\nA PATH leads "
         "through the description: network.mac, slots[2].type, slots[*].serial, [\"a.b\"]. A spare is equal to the "
         "main unit if nothing but its address, its MAC and its id has to be ignored.\n\nThe sheet shows each changed "
         "picture in a row: A, B, and where they differ. It replaces no file.",
         {{"A", "A project file or a device's directory", Count::One}, {"B", "The same, to compare with", Count::One}},
         {{"--ignore", "PATH", "Ignore this member of the description and everything below it", true},
          {"--sheet", "FILE.png", "Draw the changed pictures and their differences", false}},
         runDiff},
        {"extract",
         "Extract a project file into a new directory",
         "All entries or none: the directory gets its name when it is complete, and must not exist before. Names that "
         "lead out of it, links and damaged entries are refused.",
         {{"FILE", "A project file", Count::One}, {"DIR", "The directory to create", Count::One}},
         {{"--entry", "NAME", "Extract only this file, to DIR/NAME", false}},
         runExtract},
        {"create",
         "Pack a device's directory into a new project file",
         "Packs, verifies and flushes it as the control application does when it saves. Replaces no file.",
         {{"DIR", "A device's directory", Count::One}, {"FILE", "The project file to create", Count::One}},
         {{"--name", "NAME", "The project's name; otherwise that of the file", false},
          {"--comment", "TEXT", "Its comment, at most 100 characters", false}},
         runCreate},
        {"edit",
         "Change the name or the comment of a project file",
         "Changes the file in place and verifies it, as the control application does. A new name also renames the "
         "file, within its directory. Replaces no file.",
         {{"FILE", "A project file", Count::One}},
         {{"--name", "NAME", "The project's new name, and its file's", false},
          {"--comment", "TEXT", "Its new comment, at most 100 characters", false}},
         runEdit},
        {"copy",
         "Copy project files, and verify each copy by reading it back",
         "Each copy is written to a hidden file, flushed to disk, read back from the disk if that is possible, "
         "compared with the data read from the original, and only then renamed. Replaces no file, and copies none that "
         "\"corvelpro check\" finds not valid.",
         {{"FILE", "A project file", Count::OneOrMore}, {"DIR", "The directory to copy to", Count::One}},
         {},
         runCopy},
        {"thumbnail",
         "Draw the first background of a project file as a small picture",
         "Writes a PNG of the background with the lowest number, in its proportions and never larger than it is. This "
         "is how file managers show project files. Replaces an existing file only if that is a PNG, or empty.",
         {{"FILE", "A project file", Count::One}, {"OUT.png", "The picture to write", Count::One}},
         {{"--size", "N", "Its largest width and height in pixels, up to 1024; by default 256", false}},
         runThumbnail},
    };
    return table;
}

} // namespace Corvelpro
