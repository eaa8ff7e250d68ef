// What a listener hears of a block that takes long.
#include "ddf/generation.h"

namespace korvo {

void tellProgress(const Generation &making, const char *stage, std::int64_t done) {
  const Listener &listener = making.messages->listener;
  if (listener.progress != nullptr) {
    listener.progress(listener.context,
                      {making.block.number, stage, done,
                       static_cast<std::int64_t>(making.events.count), making.steps});
  }
}

}  // namespace korvo
