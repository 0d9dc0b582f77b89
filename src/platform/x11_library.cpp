// Looking for the X client library.
#include "platform/x11_library.h"

#include "platform/shared_library.h"

namespace zel {
namespace {

X11Library functions{};
bool isComplete = false;

bool FunctionsFind(X11Library* to) {
  SharedLibrary library("libxcb.so.1");
  library.Find("xcb_connect", &to->connect);
  library.Find("xcb_disconnect", &to->disconnect);
  library.Find("xcb_connection_has_error", &to->hasError);
  library.Find("xcb_get_file_descriptor", &to->fileDescriptor);
  library.Find("xcb_get_setup", &to->setup);
  library.Find("xcb_setup_roots_iterator", &to->roots);
  library.Find("xcb_screen_next", &to->screenNext);
  library.Find("xcb_screen_allowed_depths_iterator", &to->depths);
  library.Find("xcb_depth_next", &to->depthNext);
  library.Find("xcb_depth_visuals_iterator", &to->visuals);
  library.Find("xcb_visualtype_next", &to->visualNext);
  library.Find("xcb_setup_pixmap_formats", &to->pixmapFormats);
  library.Find("xcb_setup_pixmap_formats_length", &to->pixmapFormatCount);
  library.Find("xcb_get_maximum_request_length", &to->requestLength);
  library.Find("xcb_generate_id", &to->generateId);
  library.Find("xcb_flush", &to->flush);
  library.Find("xcb_poll_for_event", &to->pollForEvent);
  library.Find("xcb_poll_for_queued_event", &to->pollForQueuedEvent);
  library.Find("xcb_intern_atom", &to->internAtom);
  library.Find("xcb_intern_atom_reply", &to->internAtomReply);
  library.Find("xcb_get_keyboard_mapping", &to->keyboardMapping);
  library.Find("xcb_get_keyboard_mapping_reply", &to->keyboardMappingReply);
  library.Find("xcb_get_keyboard_mapping_keysyms", &to->keyboardMappingKeys);
  library.Find("xcb_get_keyboard_mapping_keysyms_length", &to->keyboardMappingKeyCount);
  library.Find("xcb_create_window", &to->createWindow);
  library.Find("xcb_destroy_window", &to->destroyWindow);
  library.Find("xcb_map_window", &to->mapWindow);
  library.Find("xcb_unmap_window", &to->unmapWindow);
  library.Find("xcb_configure_window", &to->configureWindow);
  library.Find("xcb_change_window_attributes", &to->changeWindowAttributes);
  library.Find("xcb_create_colormap", &to->createColormap);
  library.Find("xcb_create_pixmap", &to->createPixmap);
  library.Find("xcb_free_pixmap", &to->freePixmap);
  library.Find("xcb_create_gc", &to->createGc);
  library.Find("xcb_put_image", &to->putImage);
  library.Find("xcb_clear_area", &to->clearArea);
  library.Find("xcb_query_pointer", &to->queryPointer);
  library.Find("xcb_query_pointer_reply", &to->queryPointerReply);
  library.Find("xcb_translate_coordinates", &to->translateCoordinates);
  library.Find("xcb_translate_coordinates_reply", &to->translateCoordinatesReply);
  library.Find("xcb_set_input_focus", &to->setInputFocus);
  library.Find("xcb_send_event", &to->sendEvent);
  library.Find("xcb_bell", &to->bell);
  library.Find("xcb_change_property", &to->changeProperty);
  library.Find("xcb_delete_property", &to->deleteProperty);
  library.Find("xcb_get_property", &to->getProperty);
  library.Find("xcb_get_property_reply", &to->getPropertyReply);
  library.Find("xcb_get_property_value", &to->propertyValue);
  library.Find("xcb_get_property_value_length", &to->propertyValueLength);
  library.Find("xcb_set_selection_owner", &to->setSelectionOwner);
  library.Find("xcb_get_selection_owner", &to->getSelectionOwner);
  library.Find("xcb_get_selection_owner_reply", &to->getSelectionOwnerReply);
  library.Find("xcb_convert_selection", &to->convertSelection);
  return library.IsWhole();
}

}  // namespace

const X11Library* X11LibraryOpen() {
  isComplete = isComplete || FunctionsFind(&functions);
  return isComplete ? &functions : nullptr;
}

}  // namespace zel
