// Answers about words, of which a file has few that come often.
#ifndef ZEBCFG_ANSWERS_H
#define ZEBCFG_ANSWERS_H

#include <string>
#include <string_view>
#include <unordered_map>

// Asks once for each word, and remembers a bounded number of answers.
template <typename Answer>
class Answers {
public:
    explicit Answers(Answer (*answer)(std::string_view word)) : ask(answer) {}

    // Stays until the next call.
    const Answer& of(std::string_view word)
    {
        constexpr std::size_t most = 1024;
        key = word;
        const auto known = answers.find(key);
        if (known != answers.end())
            return known->second;
        if (answers.size() == most)
            answers.clear();
        return answers.emplace(key, ask(word)).first->second;
    }

private:
    Answer (*const ask)(std::string_view word);
    std::unordered_map<std::string, Answer> answers;
    std::string key;  // keeps its memory from call to call
};

#endif
