# The transport to the print scheduler, and the pictures of jobs.
zb_add_test(tst_cupstransport VIRTUAL_BUS WITHOUT_DAEMON PRINTING
    SOURCES tst_cupstransport.cpp LIBRARIES ZBPrintqdParts)
add_dependencies(tst_cupstransport printqnotifier)
zb_add_test(tst_picturemaker SOURCES tst_picturemaker.cpp LIBRARIES ZBPrintqdParts zbtestsupport)
zb_add_test(tst_killedscheduler VIRTUAL_BUS WITHOUT_DAEMON PRINTING
    SOURCES tst_killedscheduler.cpp LIBRARIES zbprintqueuedaemon)
add_dependencies(tst_killedscheduler printqnotifier)
