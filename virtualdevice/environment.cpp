// Editing an environment. The process's own environment is never touched.
#include "environment.h"

#include "quoting.h"

#include <algorithm>
#include <unistd.h>

namespace {

auto isEntryOf(const std::string &name)
{
    return [prefix = name + "="](const std::string &entry) {
        return entry.compare(0, prefix.size(), prefix) == 0;
    };
}

} // namespace

Environment Environment::ofThisProcess()
{
    Environment result;
    for (char **entry = environ; entry && *entry; ++entry)
        result.m_entries.emplace_back(*entry);
    return result;
}

std::optional<std::string> Environment::value(const std::string &name) const
{
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(), isEntryOf(name));
    if (entry == m_entries.end())
        return std::nullopt;
    return entry->substr(name.size() + 1);
}

void Environment::set(const std::string &name, const std::string &value)
{
    unset(name);
    m_entries.push_back(name + "=" + value);
}

void Environment::unset(const std::string &name)
{
    m_entries.erase(std::remove_if(m_entries.begin(), m_entries.end(), isEntryOf(name)), m_entries.end());
}

void EnvironmentChanges::add(const EnvironmentChanges &others)
{
    set.insert(set.end(), others.set.begin(), others.set.end());
    unset.insert(unset.end(), others.unset.begin(), others.unset.end());
}

void EnvironmentChanges::applyTo(Environment *environment) const
{
    for (const std::string &name : unset)
        environment->unset(name);
    for (const auto &[name, value] : set)
        environment->set(name, value);
}

std::string EnvironmentChanges::asShellText() const
{
    std::string result;
    for (const std::string &name : unset)
        result += "unset " + name + "\n";
    for (const auto &[name, value] : set)
        result += "export " + name + "=" + shellQuoted(value) + "\n";
    return result;
}
