#pragma once

#include "ArrowText.h"
#include "tqx/log/table/TableBuilder.h"

#include <memory>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

/// A table with all of its batches.
class WholeTable
{
public:
    WholeTable(const Kor::MessageApi::TQX_TypeLayout& type, const tqx::TableOptions& options,
               const std::vector<Bytes>& blocks, uint8_t week = 0)
        : schema(std::make_shared<const tqx::TableSchema>(type, options)),
          m_builder(schema,
                    [this](const tqx::TableBlock&, int32_t code) { refused.push_back(code); })
    {
        schema->exportTo(columns);
        std::vector<tqx::TableBlock> views;
        for (const Bytes& block : blocks) {
            views.push_back({block.data(), static_cast<uint16_t>(block.size()), week,
                             100 + views.size(), "day.tqx"});
        }
        for (size_t taken = 0; taken < views.size();) {
            taken += m_builder.append(views.data() + taken, views.size() - taken);
            m_builder.finish(batches.emplace_back());
        }
    }

    ~WholeTable()
    {
        columns.release(&columns);
        for (ArrowArray& batch : batches)
            batch.release(&batch);
    }
    WholeTable(const WholeTable&) = delete;
    WholeTable& operator=(const WholeTable&) = delete;

    /// The rows of all batches, "{time=...,offset=...,...}".
    std::vector<std::string> rows() const
    {
        std::vector<std::string> texts;
        for (const ArrowArray& batch : batches) {
            for (int64_t row = 0; row < batch.length; ++row)
                texts.push_back(arrowText(columns, batch, static_cast<size_t>(row)));
        }
        return texts;
    }

    /// The values of one column.
    std::vector<std::string> column(const std::string& name) const
    {
        std::vector<std::string> texts;
        const int index = findColumn(columns, name);
        for (const ArrowArray& batch : batches) {
            for (int64_t row = 0; index >= 0 && row < batch.length; ++row) {
                texts.push_back(arrowText(*columns.children[index], *batch.children[index],
                                          static_cast<size_t>(row)));
            }
        }
        return texts;
    }

    const ArrowSchema& typeOf(const std::string& name) const
    {
        return *columns.children[findColumn(columns, name)];
    }

    std::shared_ptr<const tqx::TableSchema> schema;
    std::vector<int32_t> refused;
    ArrowSchema columns = {};
    std::vector<ArrowArray> batches;

private:
    tqx::TableBuilder m_builder;
};
