#pragma once

#include "io/ProductFile.h"
#include "io/Spool.h"
#include "options/StreamOptions.h"
#include "output/PulseList.h"
#include "tqx/gnss/navigation/NavigationStore.h"
#include "tqx/gnss/observation/EpochSelection.h"
#include "tqx/gnss/observation/ObservationGatherer.h"
#include "tqx/gnss/rinex/LogSurvey.h"
#include "tqx/gnss/rinex/NavigationFile.h"
#include "tqx/gnss/rinex/ObservationFile.h"
#include "tqx/gnss/rinex/RinexOptions.h"
#include "tqx/log/record/RecordDecoder.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tqx::tool
{

/// Options of `tqx rinex`.
struct RinexRequest {
    RinexOptions options;
    EpochSelection selection;
    std::string folder;
    bool isCompressed = false;
};

/// The first pass over a log, as a consumer of its blocks, and the resulting files. What can only
/// be read once is kept in a temporary file for the second pass.
class RinexRun : public BlockConsumer
{
public:
    /// `mustKeep`: the input cannot be read again. Throws ToolError when it cannot be kept.
    RinexRun(RinexRequest request, bool mustKeep);

    void begin(InputStream& stream) override;
    void take(BlockStream& stream, const Block& block) override;
    void end(InputStream& stream) override;

    /// Writes the files, reading `files` once more unless the input was kept. Throws ToolError.
    ExitStatus writeFiles(const std::vector<std::string>& files, bool isQuiet);

private:
    struct Output {
        Output(ObservationFile observations, const std::string& path, bool isCompressed)
            : rinex(std::move(observations)), file(path, isCompressed)
        {
        }

        ObservationFile rinex;
        ProductFile file;
    };

    bool survey(ObservationEpoch& epoch);
    void openFiles();
    void takeMessage(const DecodedBlock& decoded);
    void writeNavigation();
    void writeObservations(ByteSource& source);
    void writePulses(size_t end);
    std::string placeIn(const std::string& name);
    void finish(ProductFile& file);

    RinexRequest m_request;
    std::optional<Spool> m_spool;
    RecordDecoder m_decoder;
    LogSurvey m_survey;
    NavigationStore m_navigation;
    PulseList m_pulses;
    std::optional<GnssMillis> m_firstMessage; ///< times of blocks for the navigation file
    GnssMillis m_lastMessage = 0;
    ObservationGatherer m_gatherer;
    std::vector<std::unique_ptr<Output>> m_outputs;
    size_t m_writtenPulses = 0;
    std::vector<std::string> m_names; ///< of the files so far
    bool m_isQuiet = false;
};

} // namespace tqx::tool
