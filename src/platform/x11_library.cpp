// Looking for the X client library.
#include "platform/x11_library.h"

#include <dlfcn.h>

namespace zel {
namespace {

constexpr char LIBRARY[] = "libxcb.so.1";

X11Library functions{};
bool isComplete = false;

template <class Function>
bool Take(void* library, const char* name, Function** function) {
  *function = reinterpret_cast<Function*>(dlsym(library, name));
  return *function != nullptr;
}

bool FunctionsTake(void* library, X11Library* to) {
  return Take(library, "xcb_connect", &to->connect) &&
         Take(library, "xcb_disconnect", &to->disconnect) &&
         Take(library, "xcb_connection_has_error", &to->hasError) &&
         Take(library, "xcb_get_file_descriptor", &to->fileDescriptor) &&
         Take(library, "xcb_get_setup", &to->setup) &&
         Take(library, "xcb_setup_roots_iterator", &to->roots) &&
         Take(library, "xcb_screen_next", &to->screenNext) &&
         Take(library, "xcb_screen_allowed_depths_iterator", &to->depths) &&
         Take(library, "xcb_depth_next", &to->depthNext) &&
         Take(library, "xcb_depth_visuals_iterator", &to->visuals) &&
         Take(library, "xcb_visualtype_next", &to->visualNext) &&
         Take(library, "xcb_setup_pixmap_formats", &to->pixmapFormats) &&
         Take(library, "xcb_setup_pixmap_formats_length", &to->pixmapFormatCount) &&
         Take(library, "xcb_get_maximum_request_length", &to->requestLength) &&
         Take(library, "xcb_generate_id", &to->generateId) &&
         Take(library, "xcb_flush", &to->flush) &&
         Take(library, "xcb_poll_for_event", &to->pollForEvent) &&
         Take(library, "xcb_poll_for_queued_event", &to->pollForQueuedEvent) &&
         Take(library, "xcb_intern_atom", &to->internAtom) &&
         Take(library, "xcb_intern_atom_reply", &to->internAtomReply) &&
         Take(library, "xcb_get_keyboard_mapping", &to->keyboardMapping) &&
         Take(library, "xcb_get_keyboard_mapping_reply", &to->keyboardMappingReply) &&
         Take(library, "xcb_get_keyboard_mapping_keysyms", &to->keyboardMappingKeys) &&
         Take(library, "xcb_get_keyboard_mapping_keysyms_length", &to->keyboardMappingKeyCount) &&
         Take(library, "xcb_create_window", &to->createWindow) &&
         Take(library, "xcb_destroy_window", &to->destroyWindow) &&
         Take(library, "xcb_map_window", &to->mapWindow) &&
         Take(library, "xcb_unmap_window", &to->unmapWindow) &&
         Take(library, "xcb_configure_window", &to->configureWindow) &&
         Take(library, "xcb_change_window_attributes", &to->changeWindowAttributes) &&
         Take(library, "xcb_create_colormap", &to->createColormap) &&
         Take(library, "xcb_create_pixmap", &to->createPixmap) &&
         Take(library, "xcb_free_pixmap", &to->freePixmap) &&
         Take(library, "xcb_create_gc", &to->createGc) &&
         Take(library, "xcb_put_image", &to->putImage) &&
         Take(library, "xcb_clear_area", &to->clearArea) &&
         Take(library, "xcb_query_pointer", &to->queryPointer) &&
         Take(library, "xcb_query_pointer_reply", &to->queryPointerReply) &&
         Take(library, "xcb_set_input_focus", &to->setInputFocus) &&
         Take(library, "xcb_send_event", &to->sendEvent) && Take(library, "xcb_bell", &to->bell) &&
         Take(library, "xcb_change_property", &to->changeProperty) &&
         Take(library, "xcb_delete_property", &to->deleteProperty) &&
         Take(library, "xcb_get_property", &to->getProperty) &&
         Take(library, "xcb_get_property_reply", &to->getPropertyReply) &&
         Take(library, "xcb_get_property_value", &to->propertyValue) &&
         Take(library, "xcb_get_property_value_length", &to->propertyValueLength) &&
         Take(library, "xcb_set_selection_owner", &to->setSelectionOwner) &&
         Take(library, "xcb_get_selection_owner", &to->getSelectionOwner) &&
         Take(library, "xcb_get_selection_owner_reply", &to->getSelectionOwnerReply) &&
         Take(library, "xcb_convert_selection", &to->convertSelection);
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
