// Spawns, watches by a process descriptor, and reaps.
#include "limitedprocess.h"

#include <QtCore/QFile>
#include <QtCore/QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// The header of glibc 2.36 says nothing of C.
extern "C" {
#include <sys/pidfd.h>
}

namespace {

constexpr char mostMemory[] = "--as=536870912";
constexpr char mostProcessorSeconds[] = "--cpu=10";
constexpr char largestOutput[] = "--fsize=8388608";
constexpr char mostFiles[] = "--nofile=64";

const QList<QByteArray> limits = {
    "setpriv",     "--pdeathsig=KILL", "--no-new-privs", "--", "prlimit", mostMemory, mostProcessorSeconds,
    largestOutput, mostFiles,          "--core=0",       "--", "nice",    "-n",       "19",
    "--"};

// What keeps the program from the settings of whoever started the daemon.
const char *const environment[] = {"PATH=/usr/bin:/bin", "LC_ALL=C.UTF-8", "OMP_NUM_THREADS=1", nullptr};

struct FileActions
{
    FileActions() { posix_spawn_file_actions_init(&actions); }
    ~FileActions() { posix_spawn_file_actions_destroy(&actions); }
    Q_DISABLE_COPY(FileActions)

    posix_spawn_file_actions_t actions = {};
};

struct Attributes
{
    Attributes()
    {
        posix_spawnattr_init(&attributes);
        // The daemon blocks those that end it.
        sigset_t none;
        sigemptyset(&none);
        sigset_t all;
        sigfillset(&all);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setsigdefault(&attributes, &all);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~Attributes() { posix_spawnattr_destroy(&attributes); }
    Q_DISABLE_COPY(Attributes)

    posix_spawnattr_t attributes = {};
};

} // namespace

LimitedProcess::LimitedProcess(QObject *parent)
    : QObject(parent)
{
}

LimitedProcess::~LimitedProcess()
{
    kill();
    if (m_process > 0)
        waitpid(m_process, nullptr, 0);
    m_end.reset();
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

bool LimitedProcess::start(const QString &program, const QStringList &arguments, const QString &input,
                           const QString &output)
{
    m_program = program;
    QList<QByteArray> texts = limits;
    texts.append(QFile::encodeName(program));
    for (const QString &argument : arguments)
        texts.append(QFile::encodeName(argument));
    std::vector<char *> pointers;
    for (QByteArray &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);

    const QByteArray outputName = QFile::encodeName(output);
    unlink(outputName.constData());
    FileActions files;
    posix_spawn_file_actions_addopen(&files.actions, STDIN_FILENO, QFile::encodeName(input).constData(),
                                     O_RDONLY, 0);
    // Written through to the disk, by the program and not by the daemon, whom that would hold up.
    posix_spawn_file_actions_addopen(&files.actions, STDOUT_FILENO, outputName.constData(),
                                     O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_SYNC,
                                     S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH);
    posix_spawn_file_actions_addopen(&files.actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addchdir_np(&files.actions, "/");

    const Attributes attributes;
    if (posix_spawnp(&m_process, pointers.front(), &files.actions, &attributes.attributes, pointers.data(),
                     const_cast<char *const *>(environment))
        != 0) {
        m_process = -1;
        return false;
    }
    m_descriptor = pidfd_open(m_process, 0);
    m_end = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
    connect(m_end.get(), &QSocketNotifier::activated, this, &LimitedProcess::reap);
    return true;
}

void LimitedProcess::kill()
{
    if (m_process > 0)
        ::kill(m_process, SIGKILL);
}

void LimitedProcess::reap()
{
    int status = 0;
    if (waitpid(m_process, &status, WNOHANG) != m_process)
        return;
    m_process = -1;
    m_end->setEnabled(false);
    m_hasCrashed = !WIFEXITED(status);
    m_exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
    Q_EMIT finished();
}
