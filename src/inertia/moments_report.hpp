/// Principal moments and rotational constants, for the log.
#pragma once

#include "common/record_stream.hpp"
#include "inertia/inertia_tensor.hpp"

namespace dravo {

/// B = h / (8 pi^2 I) in GHz for a moment in g cm^2; infinite for a moment of zero.
double rotational_constant_ghz(double moment);

/// With 30 GHz for one wavenumber.
double rotational_constant_wavenumber(double moment);

/// Eigenvectors, moments (g cm^2, kg m^2) and rotational constants (GHz, cm-1) of one molecule.
void write_moments_report(RecordStream& log, int molecule, const PrincipalAxes& axes);

/// Tips and centres of mass of both molecules as the solver's eigenvectors give them.
void write_initial_data(RecordStream& log, const PairOfFrames& frames);

/// The part that sections of collected tips share: title, tips and centres of mass, closing dashes.
void write_collected_tips(RecordStream& log, const char* title, const PairOfFrames& frames);

/// Two lines of dashes.
void write_dashes(RecordStream& log);

}  // namespace dravo
