// Runs a fuzz target where libFuzzer is not at hand: every input of a corpus as it is, then random changes of
// them.
//
//   fuzz_NAME [--runs N] [--seconds S] [--seed N] [--dictionary FILE] CORPUS...
//
// CORPUS is a file or a folder. The random changes are the same in every run with the same seed. They end
// after N runs or S seconds, whichever comes first. An input that ends the process is kept in a file in the
// working folder.
#include "fuzztarget.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

// There when the program is linked with a sanitizer: a sanitizer ends the process without a signal.
extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());

namespace {

using Input = std::string;

struct Options
{
    unsigned long runs = 100000;
    double seconds = 3;
    unsigned long seed = 1;
    std::string dictionary;
    std::vector<std::string> corpus;
};

const Input *currentInput = nullptr;

// Only calls that are safe in a signal handler.
void keepCurrentInput()
{
    if (!currentInput)
        return;
    const Input &input = *currentInput;
    currentInput = nullptr;
    const char name[] = "crash-input";
    const int file = open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file < 0)
        return;
    const bool isKept = write(file, input.data(), input.size()) == static_cast<ssize_t>(input.size());
    close(file);
    const char message[] = "The input is kept in the file crash-input of the working folder.\n";
    if (isKept && write(STDERR_FILENO, message, sizeof message - 1) < 0)
        return;
}

void keepCurrentInputAndEnd(int signalNumber)
{
    keepCurrentInput();
    std::signal(signalNumber, SIG_DFL);
    std::raise(signalNumber);
}

void run(const Input &input)
{
    currentInput = &input;
    // A copy of exactly the size, so that a sanitizer sees every access outside.
    const std::vector<uint8_t> bytes(input.begin(), input.end());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    currentInput = nullptr;
}

Options optionsFrom(int argumentCount, char **arguments)
{
    Options options;
    for (int i = 1; i < argumentCount; ++i) {
        const std::string argument = arguments[i];
        if (argument.rfind("--", 0) != 0) {
            options.corpus.push_back(argument);
            continue;
        }
        if (i + 1 == argumentCount)
            throw std::invalid_argument("No value for " + argument);
        const std::string value = arguments[++i];
        if (argument == "--runs")
            options.runs = std::stoul(value);
        else if (argument == "--seconds")
            options.seconds = std::stod(value);
        else if (argument == "--seed")
            options.seed = std::stoul(value);
        else if (argument == "--dictionary")
            options.dictionary = value;
        else
            throw std::invalid_argument("Unknown option " + argument);
    }
    if (options.corpus.empty())
        throw std::invalid_argument("No corpus given");
    return options;
}

Input contentOf(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("Cannot read " + path.string());
    return Input(std::istreambuf_iterator<char>(file), {});
}

/// All inputs, in the order of their names.
std::vector<Input> corpusAt(const std::vector<std::string> &places)
{
    std::vector<std::filesystem::path> paths;
    for (const std::string &place : places) {
        if (std::filesystem::is_directory(place)) {
            for (const auto &entry : std::filesystem::directory_iterator(place))
                paths.push_back(entry.path());
        } else {
            paths.emplace_back(place);
        }
    }
    std::sort(paths.begin(), paths.end());
    std::vector<Input> corpus;
    for (const std::filesystem::path &path : paths)
        corpus.push_back(contentOf(path));
    if (corpus.empty())
        throw std::runtime_error("The corpus is empty");
    return corpus;
}

/// The text of a dictionary line, NAME="TEXT", with \\, \" and \xHH resolved; empty for other lines.
Input dictionaryEntry(const std::string &line)
{
    const size_t start = line.find('"');
    const size_t end = line.rfind('"');
    if (line.empty() || line.front() == '#' || start == end)
        return {};
    Input entry;
    for (size_t i = start + 1; i < end; ++i) {
        if (line[i] != '\\' || i + 1 >= end) {
            entry += line[i];
        } else if (line[i + 1] == 'x' && i + 3 < end) {
            entry += static_cast<char>(std::stoi(line.substr(i + 2, 2), nullptr, 16));
            i += 3;
        } else {
            entry += line[++i];
        }
    }
    return entry;
}

std::vector<Input> dictionaryAt(const std::string &path)
{
    std::vector<Input> entries;
    if (path.empty())
        return entries;
    std::ifstream file(path);
    if (!file)
        throw std::runtime_error("Cannot read " + path);
    for (std::string line; std::getline(file, line);) {
        const Input entry = dictionaryEntry(line);
        if (!entry.empty())
            entries.push_back(entry);
    }
    return entries;
}

/// Makes inputs out of others.
class Mutator
{
public:
    Mutator(std::vector<Input> corpus, std::vector<Input> dictionary, unsigned long seed)
        : m_corpus(std::move(corpus))
        , m_dictionary(std::move(dictionary))
        , m_random(seed)
    {
    }

    Input next()
    {
        Input input = oneOf(m_corpus);
        for (size_t change = 0, changes = 1 + below(6); change < changes; ++change)
            mutate(input);
        input.resize(std::min<size_t>(input.size(), 4096));
        return input;
    }

private:
    size_t below(size_t limit) { return std::uniform_int_distribution<size_t>(0, limit - 1)(m_random); }
    const Input &oneOf(const std::vector<Input> &inputs) { return inputs[below(inputs.size())]; }

    void mutate(Input &input)
    {
        const size_t position = below(input.size() + 1);
        const size_t length = below(std::min<size_t>(input.size() - position, 32) + 1);
        switch (below(7)) {
        case 0:
            input.erase(position, length);
            break;
        case 1:
            input.insert(position, input.substr(position, length));
            break;
        case 2:
            input.insert(position, 1, static_cast<char>(below(256)));
            break;
        case 3:
            if (position < input.size())
                input[position] = static_cast<char>(below(256));
            break;
        case 4:
            if (position < input.size())
                input[position] = static_cast<char>(input[position] ^ (1 << below(8)));
            break;
        case 5:
            input.insert(position, oneOf(m_dictionary.empty() ? m_corpus : m_dictionary));
            break;
        default:
            input.replace(position, std::string::npos, oneOf(m_corpus).substr(0, 512));
        }
    }

    const std::vector<Input> m_corpus;
    const std::vector<Input> m_dictionary;
    std::mt19937_64 m_random;
};

void runAll(const Options &options)
{
    const std::vector<Input> corpus = corpusAt(options.corpus);
    for (const Input &input : corpus)
        run(input);

    Mutator mutator(corpus, dictionaryAt(options.dictionary), options.seed);
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(options.seconds);
    unsigned long runs = 0;
    while (runs < options.runs && std::chrono::steady_clock::now() < end) {
        run(mutator.next());
        ++runs;
    }
    std::printf("%zu inputs of the corpus and %lu changed ones, no difference\n", corpus.size(), runs);
}

} // namespace

int main(int argumentCount, char **arguments)
{
    for (const int signalNumber : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL})
        std::signal(signalNumber, keepCurrentInputAndEnd);
    if (__sanitizer_set_death_callback)
        __sanitizer_set_death_callback(keepCurrentInput);
    try {
        runAll(optionsFrom(argumentCount, arguments));
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
    return 0;
}
