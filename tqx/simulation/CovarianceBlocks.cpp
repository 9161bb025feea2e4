#include "tqx/simulation/Blocks.h"

namespace tqx::simulation
{

using namespace Kor::MessageApi;

namespace
{

constexpr uint8_t standalone = 1;

/// Variances in whole steps that leave four digits of the smallest ones.
float variance(double value)
{
    return static_cast<float>(rounded(value, 1e-7));
}

/// The same in earth-fixed directions.
Covariance toEarthFixed(const Covariance& local, const LocalFrame& frame)
{
    const Vector& east = frame.getEast();
    const Vector& north = frame.getNorth();
    const Vector& up = frame.getUp();
    const double turn[4][4] = {{east.x, north.x, up.x, 0},
                               {east.y, north.y, up.y, 0},
                               {east.z, north.z, up.z, 0},
                               {0, 0, 0, 1}};
    Covariance result = {};
    for (size_t i = 0; i < 4; ++i) {
        for (size_t j = 0; j < 4; ++j) {
            for (size_t k = 0; k < 4; ++k) {
                for (size_t l = 0; l < 4; ++l)
                    result[i][j] += turn[i][k] * local[k][l] * turn[j][l];
            }
        }
    }
    return result;
}

void addCartesian(BlockLog& log, const Epoch& epoch, const Covariance& place,
                  const Covariance& speed)
{
    TQX_PosCovCartesian1_s position;
    TQX_init_PosCovCartesian1(&position);
    position.Mode = standalone;
    position.Cov_XX = variance(place[0][0]);
    position.Cov_YY = variance(place[1][1]);
    position.Cov_ZZ = variance(place[2][2]);
    position.Cov_BB = variance(place[3][3]);
    position.Cov_XY = variance(place[0][1]);
    position.Cov_XZ = variance(place[0][2]);
    position.Cov_XB = variance(place[0][3]);
    position.Cov_YZ = variance(place[1][2]);
    position.Cov_YB = variance(place[1][3]);
    position.Cov_ZB = variance(place[2][3]);
    log.add(epoch, position, TQX_encode_PosCovCartesian1);

    TQX_VelCovCartesian1_s velocity;
    TQX_init_VelCovCartesian1(&velocity);
    velocity.Mode = standalone;
    velocity.Cov_VxVx = variance(speed[0][0]);
    velocity.Cov_VyVy = variance(speed[1][1]);
    velocity.Cov_VzVz = variance(speed[2][2]);
    velocity.Cov_DD = variance(speed[3][3]);
    velocity.Cov_VxVy = variance(speed[0][1]);
    velocity.Cov_VxVz = variance(speed[0][2]);
    velocity.Cov_VxD = variance(speed[0][3]);
    velocity.Cov_VyVz = variance(speed[1][2]);
    velocity.Cov_VyD = variance(speed[1][3]);
    velocity.Cov_VzD = variance(speed[2][3]);
    log.add(epoch, velocity, TQX_encode_VelCovCartesian1);
}

/// Local covariances are in the order east, north, up.
void addGeodetic(BlockLog& log, const Epoch& epoch, const Covariance& place,
                 const Covariance& speed)
{
    TQX_PosCovGeodetic1_s position;
    TQX_init_PosCovGeodetic1(&position);
    position.Mode = standalone;
    position.Cov_NN = variance(place[1][1]);
    position.Cov_EE = variance(place[0][0]);
    position.Cov_UU = variance(place[2][2]);
    position.Cov_BB = variance(place[3][3]);
    position.Cov_NE = variance(place[0][1]);
    position.Cov_NU = variance(place[1][2]);
    position.Cov_NB = variance(place[1][3]);
    position.Cov_EU = variance(place[0][2]);
    position.Cov_EB = variance(place[0][3]);
    position.Cov_UB = variance(place[2][3]);
    log.add(epoch, position, TQX_encode_PosCovGeodetic1);

    TQX_VelCovGeodetic1_s velocity;
    TQX_init_VelCovGeodetic1(&velocity);
    velocity.Mode = standalone;
    velocity.Cov_VnVn = variance(speed[1][1]);
    velocity.Cov_VeVe = variance(speed[0][0]);
    velocity.Cov_VuVu = variance(speed[2][2]);
    velocity.Cov_DD = variance(speed[3][3]);
    velocity.Cov_VnVe = variance(speed[0][1]);
    velocity.Cov_VnVu = variance(speed[1][2]);
    velocity.Cov_VnD = variance(speed[1][3]);
    velocity.Cov_VeVu = variance(speed[0][2]);
    velocity.Cov_VeD = variance(speed[0][3]);
    velocity.Cov_VuD = variance(speed[2][3]);
    log.add(epoch, velocity, TQX_encode_VelCovGeodetic1);
}

} // namespace

void addCovariances(BlockLog& log, const Epoch& epoch, const Solution& solution)
{
    const LocalFrame frame(solution.position);
    addCartesian(log, epoch, toEarthFixed(solution.positionCovariance, frame),
                 toEarthFixed(solution.velocityCovariance, frame));
    addGeodetic(log, epoch, solution.positionCovariance, solution.velocityCovariance);
}

} // namespace tqx::simulation
