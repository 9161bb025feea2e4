#include "XmlRules.h"

#include <QXmlStreamReader>

#include <regex>

namespace
{

class Checker
{
public:
    Checker(const std::string& document, const std::string& uri, const XmlRules& rules)
        : m_reader(QByteArray::fromStdString(document)), m_uri(uri), m_rules(rules)
    {
    }

    std::string check(const std::string& root)
    {
        if (!m_reader.readNextStartElement())
            return "no element";
        if (m_reader.name().toString().toStdString() != root)
            return "begins with " + m_reader.name().toString().toStdString();
        checkElement(root);
        while (!m_reader.atEnd())
            m_reader.readNext();
        if (m_reader.hasError())
            fail(m_reader.errorString().toStdString());
        return m_fault;
    }

private:
    void fail(const std::string& text)
    {
        if (m_fault.empty())
            m_fault = "line " + std::to_string(m_reader.lineNumber()) + ": " + text;
    }

    void checkAttributes(const std::string& name, const XmlElement& rule)
    {
        for (const auto& [attribute, pattern] : rule.attributes) {
            const std::string value =
                m_reader.attributes().value(attribute.c_str()).toString().toStdString();
            if (!std::regex_match(value, std::regex(pattern)))
                fail(name + " " + attribute + "='" + value + "'");
        }
    }

    /// Leaves the reader at the end of the element.
    void checkElement(const std::string& name)
    {
        const auto found = m_rules.find(name);
        if (found == m_rules.end())
            return fail(name + " is not known");
        if (m_reader.namespaceUri().toString().toStdString() != m_uri)
            fail(name + " is in another namespace");
        const XmlElement& rule = found->second;
        checkAttributes(name, rule);
        std::string text;
        size_t place = 0;
        size_t count = 0; // of the child at that place
        while (!m_reader.atEnd() && m_reader.readNext() != QXmlStreamReader::EndElement) {
            if (m_reader.isCharacters())
                text += m_reader.text().toString().toStdString();
            if (!m_reader.isStartElement())
                continue;
            const std::string child = m_reader.name().toString().toStdString();
            for (; place < rule.children.size() && rule.children[place].name != child;
                 ++place, count = 0) {
                if (rule.children[place].isRequired && count == 0)
                    fail(name + " without " + rule.children[place].name);
            }
            if (place == rule.children.size())
                return fail(child + " is not here in " + name);
            if (++count > 1 && !rule.children[place].isRepeated)
                fail("a second " + child + " in " + name);
            checkElement(child);
            if (!m_fault.empty())
                return;
        }
        for (; place < rule.children.size(); ++place, count = 0) {
            if (rule.children[place].isRequired && count == 0)
                fail(name + " without " + rule.children[place].name);
        }
        const std::string pattern = rule.children.empty() ? rule.content : "\\s*";
        if (!std::regex_match(text, std::regex(pattern)))
            fail(name + " holds '" + text.substr(0, 60) + "'");
    }

    QXmlStreamReader m_reader;
    std::string m_uri;
    const XmlRules& m_rules;
    std::string m_fault;
};

const std::string any = "[^]*";
const std::string decimal = "[-+]?([0-9]+(\\.[0-9]*)?|\\.[0-9]+)";
const std::string whole = "[0-9]+";
const std::string dateTime = "[0-9]{4}-(0[1-9]|1[0-2])-(0[1-9]|[12][0-9]|3[01])"
                             "T([01][0-9]|2[0-3]):[0-5][0-9]:[0-5][0-9](\\.[0-9]+)?Z";
const std::string latitude = "-?(90(\\.0*)?|[0-8]?[0-9](\\.[0-9]*)?)";
const std::string upTo180 = "(1[0-7][0-9]|[0-9]?[0-9])(\\.[0-9]*)?";

} // namespace

std::string xmlFault(const std::string& document, const std::string& root,
                     const std::string& namespaceUri, const XmlRules& rules)
{
    return Checker(document, namespaceUri, rules).check(root);
}

const XmlRules& gpxRules()
{
    static const XmlRules rules = {
        {"gpx",
         {{{"metadata"}, {"trk", false, true}}, {{"version", "1\\.1"}, {"creator", ".+"}}, ""}},
        {"trk",
         {{{"name"}, {"cmt"}, {"desc"}, {"src"}, {"number"}, {"type"}, {"trkseg", false, true}},
          {},
          ""}},
        {"trkseg", {{{"trkpt", false, true}}, {}, ""}},
        {"trkpt",
         {{{"ele"},
           {"time"},
           {"magvar"},
           {"geoidheight"},
           {"name"},
           {"cmt"},
           {"desc"},
           {"src"},
           {"sym"},
           {"type"},
           {"fix"},
           {"sat"},
           {"hdop"},
           {"vdop"},
           {"pdop"},
           {"ageofdgpsdata"},
           {"dgpsid"}},
          {{"lat", latitude}, {"lon", "-180(\\.0*)?|-?" + upTo180}},
          ""}},
        {"name", {{}, {}, any}},
        {"desc", {{}, {}, any}},
        {"ele", {{}, {}, decimal}},
        {"time", {{}, {}, dateTime}},
        {"geoidheight", {{}, {}, decimal}},
        {"fix", {{}, {}, "none|2d|3d|dgps|pps"}},
        {"sat", {{}, {}, whole}},
        {"ageofdgpsdata", {{}, {}, decimal}},
        {"dgpsid", {{}, {}, "10[01][0-9]|102[0-3]|[0-9]{1,3}"}},
    };
    return rules;
}

const XmlRules& kmlRules()
{
    const std::string tuple =
        "(-?180(\\.0*)?|-?" + upTo180 + ")," + latitude + "(," + decimal + ")?";
    static const XmlRules rules = {
        {"kml", {{{"Document", true}}, {}, ""}},
        {"Document",
         {{{"name"},
           {"visibility"},
           {"open"},
           {"description"},
           {"Style", false, true},
           {"Placemark", false, true}},
          {},
          ""}},
        {"Style",
         {{{"IconStyle"}, {"LabelStyle"}, {"LineStyle"}, {"PolyStyle"}},
          {{"id", "[A-Za-z_][-.A-Za-z_0-9]*"}},
          ""}},
        {"LineStyle", {{{"color"}, {"colorMode"}, {"width"}}, {}, ""}},
        {"Placemark",
         {{{"name"},
           {"visibility"},
           {"open"},
           {"description"},
           {"TimeStamp"},
           {"styleUrl"},
           {"LineString"},
           {"Point"}},
          {},
          ""}},
        {"LineString",
         {{{"extrude"}, {"tessellate"}, {"altitudeMode"}, {"coordinates", true}}, {}, ""}},
        {"Point", {{{"extrude"}, {"altitudeMode"}, {"coordinates", true}}, {}, ""}},
        {"name", {{}, {}, any}},
        {"color", {{}, {}, "[0-9a-f]{8}"}},
        {"width", {{}, {}, decimal}},
        {"styleUrl", {{}, {}, "#[A-Za-z_][-.A-Za-z_0-9]*"}},
        {"tessellate", {{}, {}, "0|1"}},
        {"altitudeMode", {{}, {}, "clampToGround|relativeToGround|absolute"}},
        {"coordinates", {{}, {}, "(\\s*" + tuple + ")+\\s*"}},
    };
    return rules;
}
