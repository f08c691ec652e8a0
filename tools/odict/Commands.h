#pragma once

#include <QStringList>
#include <QTextStream>

/// One sub-command of the odict tool: its name, a one-line summary and the function that runs it.
/// A command gets its own arguments (the command name first) and answers the exit status.
struct sCommand_t {
    const char *name;
    const char *summary;
    int (*run)(const QStringList &arguments);
};

/// Standard output and error of the tool, UTF-8.
QTextStream &out();
QTextStream &err();

int runSelfCheck(const QStringList &arguments);
