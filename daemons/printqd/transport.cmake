# The transport to the print scheduler and what makes pictures: sources and libraries for the daemon's parts, and the
# program by which the scheduler tells of its jobs.
#
# libcups is for the print scheduler alone; nothing else of the daemon includes its headers.
find_package(Cups REQUIRED)
set(ZB_NOTIFIER_FOLDER lib/cups/notifier CACHE STRING "The folder of notifiers in the scheduler's ServerBin")

set(ZB_PRINTQD_TRANSPORT_SOURCES
    ${CMAKE_CURRENT_LIST_DIR}/cupsconnection.cpp
    ${CMAKE_CURRENT_LIST_DIR}/cupsconnection.h
    ${CMAKE_CURRENT_LIST_DIR}/cupsdocumentfile.cpp
    ${CMAKE_CURRENT_LIST_DIR}/cupsdocumentfile.h
    ${CMAKE_CURRENT_LIST_DIR}/cupsjobs.cpp
    ${CMAKE_CURRENT_LIST_DIR}/cupsjobs.h
    ${CMAKE_CURRENT_LIST_DIR}/cupsnotifications.cpp
    ${CMAKE_CURRENT_LIST_DIR}/cupsnotifications.h
    ${CMAKE_CURRENT_LIST_DIR}/cupsorders.cpp
    ${CMAKE_CURRENT_LIST_DIR}/cupstransport.cpp
    ${CMAKE_CURRENT_LIST_DIR}/cupstransport.h
    ${CMAKE_CURRENT_LIST_DIR}/limitedprocess.cpp
    ${CMAKE_CURRENT_LIST_DIR}/limitedprocess.h
    ${CMAKE_CURRENT_LIST_DIR}/picturemaker.cpp
    ${CMAKE_CURRENT_LIST_DIR}/picturemaker.h
    ${CMAKE_CURRENT_LIST_DIR}/printtransport.h)
set(ZB_PRINTQD_TRANSPORT_LIBRARIES Cups::Cups)

# The scheduler knows it as "bracken" in its folder of notifiers (ServerBin/notifier).
add_executable(printqnotifier ${CMAKE_CURRENT_LIST_DIR}/notifier/main.cpp)
set_target_properties(printqnotifier PROPERTIES AUTOMOC OFF)
target_link_libraries(printqnotifier PRIVATE Cups::Cups)
install(PROGRAMS $<TARGET_FILE:printqnotifier> DESTINATION ${ZB_NOTIFIER_FOLDER} RENAME bracken)
