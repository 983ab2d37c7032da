// The environment of a process as a list that can be edited and handed to exec.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

class Environment
{
public:
    static Environment ofThisProcess();

    std::optional<std::string> value(const std::string &name) const;
    void set(const std::string &name, const std::string &value);
    void unset(const std::string &name);

    /// "NAME=value", in the order in which they were found or set.
    const std::vector<std::string> &entries() const { return m_entries; }

private:
    std::vector<std::string> m_entries;
};

/// What a device changes in an environment.
struct EnvironmentChanges
{
    std::vector<std::pair<std::string, std::string>> set;
    std::vector<std::string> unset;

    void add(const EnvironmentChanges &others);
    void applyTo(Environment *environment) const;
    /// The same changes as text that a POSIX shell reads, one line each.
    std::string asShellText() const;
};
