// Texts in the scheduler's own language; see cups-files.conf(5), cupsd.conf(5).
#include "schedulerconfiguration.h"

std::string schedulerFoldersText(const SchedulerPlace &place)
{
    const std::string &folder = place.folder;
    return "ServerRoot " + folder + "/etc\nServerBin " + folder + "/bin\nDataDir " + folder
        + "/data\nDocumentRoot " + folder + "/data\nRequestRoot " + folder + "/spool\nTempDir " + folder
        + "/spool/tmp\nCacheDir " + folder + "/cache\nStateDir " + folder + R"(/state
ErrorLog stderr
AccessLog /dev/null
PageLog /dev/null
CreateSelfSignedCerts no
Printcap
)";
}

std::string schedulerText(const SchedulerPlace &place, const std::string &administrator)
{
    // In this order it begins to listen: who reaches the last one reaches all.
    const std::string listen = "Listen 127.0.0.1:" + std::to_string(place.port) + "\n"
        + (place.wellKnownSocket.empty() ? "" : "Listen " + place.wellKnownSocket + "\n") + "Listen "
        + place.socket() + "\n";
    // Every user of the machine reaches a loopback port that is shared with it. Anybody may print and look,
    // but who could make a queue or write the configuration could have the scheduler run programs for him.
    const std::string administratorOnly = "AuthType Basic\n    Require user " + administrator + "\n";
    return listen + R"(LogLevel error
PassEnv DBUS_SYSTEM_BUS_ADDRESS
MaxLogSize 0
Browsing No
WebInterface No
DefaultAuthType Basic
DefaultEncryption Never
MaxJobs 0
PreserveJobHistory Yes
PreserveJobFiles Yes
# A job that was accepted is on the disk, also when the scheduler is killed.
DirtyCleanInterval 0
<Location />
    Order allow,deny
    Allow all
</Location>
<Location /admin>
    )" + administratorOnly
        + R"(</Location>
<Policy default>
  JobPrivateAccess all
  JobPrivateValues none
  SubscriptionPrivateAccess all
  SubscriptionPrivateValues none
  <Limit CUPS-Add-Modify-Printer CUPS-Delete-Printer CUPS-Add-Modify-Class CUPS-Delete-Class CUPS-Set-Default CUPS-Get-Devices CUPS-Create-Local-Printer>
    )" + administratorOnly
        + R"(  </Limit>
  <Limit Validate-Job Cancel-Jobs Cancel-My-Jobs Close-Job CUPS-Get-Document>
    Order deny,allow
    Allow all
  </Limit>
  <Limit All>
    Order deny,allow
    Allow all
  </Limit>
</Policy>
)";
}

std::string schedulerQueueText()
{
    return R"(<Printer BrackenXL>
UUID urn:uuid:6e2d7a0c-5a53-4f0e-8d8b-0b7aa6bd3c11
Info BrackenXL
MakeModel Corvanta BrackenXL
DeviceURI bracken:/
State Idle
Accepting Yes
Shared No
JobSheets none none
OpPolicy default
ErrorPolicy abort-job
</Printer>
)";
}

std::string schedulerStartText()
{
    // A scheduler of root's gives its notifiers to a user who cannot look into the device's folder.
    return R"(#!/bin/sh
# cups-exec -g GROUP -n NICENESS -u USER PROFILE PROGRAM ARGUMENTS..., but for the user, who stays the scheduler's.
[ "$1 $3 $5" != '-g -n -u' ] || shift 6
exec /usr/lib/cups/daemon/cups-exec "$@"
)";
}
