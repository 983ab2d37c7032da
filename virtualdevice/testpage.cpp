// PDF by hand, in plain text: four objects, a table of where they begin, and the drawing.
#include "testpage.h"

#include <iomanip>
#include <sstream>
#include <vector>

namespace {

constexpr int pointsOfAnInch = 72;
constexpr int marksOfAnInch = 8;
constexpr int marginPoints = 9;

std::string line(int fromX, int fromY, int toX, int toY)
{
    std::ostringstream result;
    result << fromX << ' ' << fromY << " m " << toX << ' ' << toY << " l S\n";
    return result.str();
}

std::string words(int x, int y, int size, const std::string &text)
{
    std::ostringstream result;
    result << "BT /F1 " << size << " Tf " << x << ' ' << y << " Td (" << text << ") Tj ET\n";
    return result.str();
}

// From the edges of the paper, so that a shift of the print can be read off.
std::string rulers(int inches)
{
    std::string result;
    for (int mark = 1; mark < inches * marksOfAnInch; ++mark) {
        const int place = mark * pointsOfAnInch / marksOfAnInch;
        const bool isInch = mark % marksOfAnInch == 0;
        const int end = marginPoints + (isInch ? 18 : 6);
        result += line(place, marginPoints, place, end) + line(marginPoints, place, end, place);
        if (!isInch)
            continue;
        const std::string number = std::to_string(mark / marksOfAnInch);
        result += words(place - 3, end + 3, 10, number) + words(end + 3, place - 3, 10, number);
    }
    return result;
}

std::string drawing(int inches)
{
    const int side = inches * pointsOfAnInch;
    const int frame = side - 2 * marginPoints;
    const std::string size = std::to_string(inches);
    std::ostringstream result;
    result << "1 w\n"
           << marginPoints << ' ' << marginPoints << ' ' << frame << ' ' << frame << " re S\n0.5 w\n"
           << rulers(inches) << words(side / 5, side / 2, 16, "BrackenXL test page " + size + " x " + size)
           << words(side / 5, side / 2 - 18, 10, "The rulers count inches from the edges of the label.");
    return result.str();
}

} // namespace

std::string testPage(int inches)
{
    const std::string side = std::to_string(inches * pointsOfAnInch);
    const std::string content = drawing(inches);
    const std::vector<std::string> objects = {
        "<< /Type /Catalog /Pages 2 0 R >>",
        "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 " + side + ' ' + side
            + "] /Contents 4 0 R /Resources << /Font << /F1 << /Type /Font /Subtype /Type1 /BaseFont "
              "/Helvetica"
              " >> >> >> >>",
        "<< /Length " + std::to_string(content.size()) + " >>\nstream\n" + content + "endstream",
    };
    std::ostringstream result;
    std::ostringstream table;
    result << "%PDF-1.4\n";
    table << "xref\n0 " << objects.size() + 1 << "\n0000000000 65535 f \n";
    for (std::size_t index = 0; index < objects.size(); ++index) {
        table << std::setfill('0') << std::setw(10) << result.tellp() << " 00000 n \n";
        result << index + 1 << " 0 obj\n" << objects[index] << "\nendobj\n";
    }
    const auto tableAt = result.tellp();
    result << table.str() << "trailer\n<< /Size " << objects.size() + 1 << " /Root 1 0 R >>\nstartxref\n"
           << tableAt << "\n%%EOF\n";
    return result.str();
}
