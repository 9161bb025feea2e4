#pragma once

#include <map>
#include <string>
#include <vector>

/// A child that an element may have, at its place among the others.
struct XmlChild {
    std::string name;
    bool isRequired = false;
    bool isRepeated = false;
};

/// What a schema says about one element.
struct XmlElement {
    std::vector<XmlChild> children;                ///< in order
    std::map<std::string, std::string> attributes; ///< required ones, with a pattern of the value
    std::string content;                           ///< pattern of the text, without children
};

/// Elements by name, each used in one place only.
using XmlRules = std::map<std::string, XmlElement>;

/// What is wrong with a document, empty when nothing is: it is well-formed, begins with `root` in
/// the namespace, and every element is as the rules have it.
std::string xmlFault(const std::string& document, const std::string& root,
                     const std::string& namespaceUri, const XmlRules& rules);

/// GPX 1.1, those elements that tracks may have.
const XmlRules& gpxRules();

/// OGC KML 2.2, those elements that lines of a track need.
const XmlRules& kmlRules();
