#include "read/YamlDocuments.h"

#include <yaml-cpp/eventhandler.h>

#include <sstream>

namespace korcg::generator
{

namespace
{

/// Goes through the text before nodes are made from it. Keeps out what the tree would not survive:
/// nodes that contain themselves, and the parser's habit of returning empty documents for ever at a
/// comma outside of any collection.
class Guard : public YAML::EventHandler
{
public:
    void OnDocumentStart(const YAML::Mark& mark) override
    {
        if (mark.pos == m_lastStart)
            throw YAML::ParserException(mark, "a comma is outside of any list or map");
        m_lastStart = mark.pos;
    }
    void OnDocumentEnd() override {}
    void OnNull(const YAML::Mark& mark, YAML::anchor_t anchor) override { check(mark, anchor); }
    void OnAlias(const YAML::Mark& mark, YAML::anchor_t anchor) override { check(mark, anchor); }
    void OnScalar(const YAML::Mark& mark, const std::string&, YAML::anchor_t anchor,
                  const std::string&) override
    {
        check(mark, anchor);
    }
    void OnSequenceStart(const YAML::Mark& mark, const std::string&, YAML::anchor_t anchor,
                         YAML::EmitterStyle::value) override
    {
        check(mark, anchor);
    }
    void OnSequenceEnd() override {}
    void OnMapStart(const YAML::Mark& mark, const std::string&, YAML::anchor_t anchor,
                    YAML::EmitterStyle::value) override
    {
        check(mark, anchor);
    }
    void OnMapEnd() override {}

private:
    static void check(const YAML::Mark& mark, YAML::anchor_t anchor)
    {
        if (anchor != YAML::NullAnchor)
            throw YAML::ParserException(mark, "anchors and aliases are not supported");
    }

    int m_lastStart = -1;
};

} // namespace

std::vector<YAML::Node> loadDocuments(const Source& source)
{
    std::istringstream text(source.text);
    YAML::Parser parser(text);
    Guard guard;
    while (parser.HandleNextDocument(guard)) {
    }
    return YAML::LoadAll(source.text);
}

} // namespace korcg::generator
