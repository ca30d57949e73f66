#include "platform.h"

namespace {

const struct {
    int number;
    const char* text;
} messages[] = {
    {3, "The system cannot find the path specified."},
    {5, "Access is denied."},
    {8, "Not enough memory resources are available to process this command."},
    {31, "A device attached to the system is not functioning."},
    {nameTooLong, "The filename or extension is too long."},
};

}  // namespace

std::string systemErrorText(int number)
{
    for (const auto& message : messages) {
        if (message.number == number)
            return message.text;
    }
    return "";
}
