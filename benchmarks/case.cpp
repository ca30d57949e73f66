#include "case.h"

#include "references.h"

Case::Case(const Request& request) : input(generateInput(request)), file(directory / "generated.conf")
{
    figures.shape = request.shape;
    figures.size = request.size;
    figures.bytes = static_cast<double>(input.text.size());
    writeBytes(file, input.text);
}
