#include "results/scan_results.hpp"

namespace dravo {

void StreamedResults::begin(ScanRecord& record) {
  files_.begin();
  files_.append(ResultFile::table, texts_.table_heading);
  files_.append(ResultFile::molecule2, texts_.molecule2);
  files_.describe(record);
}

void StreamedResults::append(const TextChunk& chunk, ScanRecord& record) {
  files_.append(ResultFile::frames, chunk.frames);
  files_.append(ResultFile::table, chunk.table);
  files_.describe(record);
}

}  // namespace dravo
