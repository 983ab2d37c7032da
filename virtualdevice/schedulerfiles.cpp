// A tree of the scheduler's own, instead of the folders of the machine's.
#include "schedulerfiles.h"

#include "failure.h"
#include "files.h"
#include "ownfiles.h"
#include "schedulerconfiguration.h"
#include "textfiles.h"

#include <filesystem>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

const char *const schedulerProgram = "/usr/sbin/cupsd";

namespace {

void makeProgram(const std::string &path, const std::string &text)
{
    writeFile(path, text);
    // The scheduler runs a backend with its own rights, not with those of another user, if nobody else may
    // run it.
    if (chmod(path.c_str(), S_IRWXU) != 0)
        throw systemFailure("cannot set the rights of '" + path + "'");
}

// Where AppArmor is in force it keeps the program of that path, wherever it is started, to the machine's
// folders.
void copyProgram(const std::string &path)
{
    std::error_code error;
    if (!std::filesystem::copy_file(schedulerProgram, path, error))
        throw Failure("cannot copy " + std::string(schedulerProgram) + ": " + error.message());
}

std::string nameOfThisUser()
{
    const passwd *const entry = getpwuid(geteuid());
    return entry ? entry->pw_name : std::to_string(geteuid());
}

} // namespace

void makeSchedulerFiles(const DeviceDirectory &directory, const SchedulerPlace &place)
{
    const std::string folder = directory.printing();
    const std::string etc = directory.printingConfiguration();
    const std::string programs = folder + "/bin";
    for (const std::string &needed : {etc + "/ppd", etc + "/ssl", programs + "/backend", programs + "/daemon",
                                      programs + "/notifier", folder + "/cache", folder + "/state",
                                      folder + "/data/banners", folder + "/data/mime", folder + "/spool/tmp"})
        makePublicFolders(needed);
    writeFile(etc + "/cups-files.conf", schedulerFoldersText(place));
    writeFile(etc + "/cupsd.conf", schedulerText(place, nameOfThisUser()));
    writeFile(etc + "/printers.conf", schedulerQueueText());
    writePublicFile(etc + "/ppd/BrackenXL.ppd", queueDescriptionText);
    makeProgram(programs + "/backend/bracken", backendText);
    makeProgram(folder + "/scheduler", schedulerControlText);
    copyProgram(folder + "/cupsd");
    makeProgram(programs + "/daemon/cups-exec", schedulerStartText());
    makeLink("/usr/lib/cups/notifier/dbus", programs + "/notifier/dbus");
    // Where it was not built, the daemon looks at the jobs at intervals.
    if (access(notifierPath().c_str(), X_OK) == 0)
        makeLink(notifierPath(), programs + "/notifier/bracken");
    // Of the machine's rules only the basic ones: others bring filters for documents of other printers.
    makeLink("/usr/share/cups/mime/mime.types", folder + "/data/mime/mime.types");
}

EnvironmentChanges schedulerVariables(const DeviceDirectory &directory, const SchedulerPlace &place)
{
    EnvironmentChanges changes = {{{"ZBVIRTUALDEVICE_PRINTED", directory.printed()},
                                   {"ZBVIRTUALDEVICE_PRINTER", place.queueAddress()},
                                   {"ZBVIRTUALDEVICE_SCHEDULER", place.control()}},
                                  {}};
    if (place.wellKnownSocket.empty())
        changes.add(schedulerVariablesOutside(directory));
    return changes;
}

EnvironmentChanges schedulerVariablesOutside(const DeviceDirectory &directory)
{
    return {{{"CUPS_SERVER", directory.printing() + "/cups.sock"},
             {"CUPS_SERVERROOT", directory.printingConfiguration()},
             {"ZBVIRTUALDEVICE_PRINTED", directory.printed()}},
            {}};
}

EnvironmentChanges withoutOtherSchedulers()
{
    return {{},
            {"CUPS_CACHEDIR", "CUPS_DATADIR", "CUPS_ENCRYPTION", "CUPS_SERVER", "CUPS_SERVERBIN",
             "CUPS_SERVERROOT", "CUPS_STATEDIR", "CUPS_USER", "IPP_PORT", "LPDEST", "PRINTER"}};
}
