// Looking for the X client library.
#include "platform/x11_library.h"

#include <dlfcn.h>

namespace zel {
namespace {

constexpr char LIBRARY[] = "libxcb.so.1";

X11Library functions{};
bool isComplete = false;

bool FunctionsTake(void* library, X11Library* to) {
  const auto take = [library]<class Function>(const char* name, Function* function) {
    *function = reinterpret_cast<Function>(dlsym(library, name));
    return *function != nullptr;
  };
  return take("xcb_connect", &to->connect) && take("xcb_disconnect", &to->disconnect) &&
         take("xcb_connection_has_error", &to->hasError) &&
         take("xcb_get_file_descriptor", &to->fileDescriptor) &&
         take("xcb_get_setup", &to->setup) && take("xcb_setup_roots_iterator", &to->roots) &&
         take("xcb_screen_next", &to->screenNext) &&
         take("xcb_screen_allowed_depths_iterator", &to->depths) &&
         take("xcb_depth_next", &to->depthNext) &&
         take("xcb_depth_visuals_iterator", &to->visuals) &&
         take("xcb_visualtype_next", &to->visualNext) &&
         take("xcb_setup_pixmap_formats", &to->pixmapFormats) &&
         take("xcb_setup_pixmap_formats_length", &to->pixmapFormatCount) &&
         take("xcb_get_maximum_request_length", &to->requestLength) &&
         take("xcb_generate_id", &to->generateId) && take("xcb_flush", &to->flush) &&
         take("xcb_poll_for_event", &to->pollForEvent) &&
         take("xcb_poll_for_queued_event", &to->pollForQueuedEvent) &&
         take("xcb_intern_atom", &to->internAtom) &&
         take("xcb_intern_atom_reply", &to->internAtomReply) &&
         take("xcb_get_keyboard_mapping", &to->keyboardMapping) &&
         take("xcb_get_keyboard_mapping_reply", &to->keyboardMappingReply) &&
         take("xcb_get_keyboard_mapping_keysyms", &to->keyboardMappingKeys) &&
         take("xcb_get_keyboard_mapping_keysyms_length", &to->keyboardMappingKeyCount) &&
         take("xcb_create_window", &to->createWindow) &&
         take("xcb_destroy_window", &to->destroyWindow) && take("xcb_map_window", &to->mapWindow) &&
         take("xcb_unmap_window", &to->unmapWindow) &&
         take("xcb_configure_window", &to->configureWindow) &&
         take("xcb_change_window_attributes", &to->changeWindowAttributes) &&
         take("xcb_create_colormap", &to->createColormap) &&
         take("xcb_create_pixmap", &to->createPixmap) && take("xcb_free_pixmap", &to->freePixmap) &&
         take("xcb_create_gc", &to->createGc) && take("xcb_put_image", &to->putImage) &&
         take("xcb_clear_area", &to->clearArea) && take("xcb_query_pointer", &to->queryPointer) &&
         take("xcb_query_pointer_reply", &to->queryPointerReply) &&
         take("xcb_set_input_focus", &to->setInputFocus) &&
         take("xcb_send_event", &to->sendEvent) && take("xcb_bell", &to->bell) &&
         take("xcb_change_property", &to->changeProperty) &&
         take("xcb_delete_property", &to->deleteProperty) &&
         take("xcb_get_property", &to->getProperty) &&
         take("xcb_get_property_reply", &to->getPropertyReply) &&
         take("xcb_get_property_value", &to->propertyValue) &&
         take("xcb_get_property_value_length", &to->propertyValueLength) &&
         take("xcb_set_selection_owner", &to->setSelectionOwner) &&
         take("xcb_get_selection_owner", &to->getSelectionOwner) &&
         take("xcb_get_selection_owner_reply", &to->getSelectionOwnerReply) &&
         take("xcb_convert_selection", &to->convertSelection);
}

}  // namespace

const X11Library* X11LibraryOpen() {
  if (isComplete) return &functions;
  // It is never unloaded: other parts of the program can have it in use meanwhile.
  void* library = dlopen(LIBRARY, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  isComplete = library && FunctionsTake(library, &functions);
  return isComplete ? &functions : nullptr;
}

}  // namespace zel
