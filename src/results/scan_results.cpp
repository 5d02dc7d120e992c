#include "results/scan_results.hpp"

namespace dravo {

void StreamedResults::begin() {
  files_.begin();
  files_.append(ResultFile::table, texts_.table_heading);
  files_.append(ResultFile::molecule2, texts_.molecule2);
}

void StreamedResults::append(const TextChunk& chunk, ScanRecord& record) {
  files_.append(ResultFile::frames, chunk.frames);
  files_.append(ResultFile::table, chunk.table);
  files_.describe(record);
}

void StreamedResults::sync(ScanRecord& record) {
  files_.sync();
  files_.describe(record);
}

}  // namespace dravo
