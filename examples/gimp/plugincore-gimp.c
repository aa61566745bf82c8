/*
 * A host plug-in for GIMP 2.10: the fonts of images that are open are active, and GIMP sees them at once.
 *
 * GIMP tells its plug-ins nothing of images that are opened, saved or closed. So this one is an extension, a process that
 * GIMP starts with itself and ends with itself, which looks at the list of images twice a second and tells the core what
 * has changed. All calls are made by its one thread. The process's own name holds "gimp", by which the core knows a host.
 */
#include <PluginCoreInterface.h>
#include <json-glib/json-glib.h>
#include <libgimp/gimp.h>
#include <string.h>

static const char kPluginIdentifier[] = "com.vantorix.AutoActivationPlugin.GIMP";
static const guint kInterval = 500; /* milliseconds between two looks */
enum { kIdentifierSize = 64, kListSize = 1 << 20 };

/* An image as it was at the last look. */
typedef struct {
    char* path;  /* NULL for one that was never saved */
    char* fonts; /* the list of them */
    char identifier[kIdentifierSize];
    gboolean is_dirty;
} Image;

static GHashTable* images; /* of Image, by GIMP's number */

/* ---- What GIMP knows */

static void add_fonts_of(gint count, const gint* items, GHashTable* names) {
    for (gint i = 0; i < count; ++i) {
        gint num_children = 0;
        gint* children =
            gimp_item_is_group(items[i]) ? gimp_item_get_children(items[i], &num_children) : NULL;
        add_fonts_of(num_children, children, names);
        g_free(children);
        char* name = gimp_item_is_text_layer(items[i]) ? gimp_text_layer_get_font(items[i]) : NULL;
        if (name != NULL)
            g_hash_table_add(names, name);
    }
}

/* The names of the fonts that the image's text asks for, there or not. */
static GHashTable* fonts_of(gint32 image) {
    GHashTable* names = g_hash_table_new_full(g_str_hash, g_str_equal, g_free, NULL);
    gint count = 0;
    gint* layers = gimp_image_get_layers(image, &count);
    add_fonts_of(count, layers, names);
    g_free(layers);
    return names;
}

/* The image's fonts as the core takes them; the same fonts make the same text. */
static char* font_list_of(gint32 image) {
    GHashTable* names = fonts_of(image);
    GList* sorted = g_list_sort(g_hash_table_get_keys(names), (GCompareFunc)strcmp);
    JsonBuilder* builder = json_builder_begin_array(json_builder_new());
    for (const GList* each = sorted; each != NULL; each = each->next) {
        json_builder_begin_object(builder);
        json_builder_set_member_name(builder, "PostScriptName");
        json_builder_add_string_value(builder, each->data);
        json_builder_end_object(builder);
    }
    JsonNode* root = json_builder_get_root(json_builder_end_array(builder));
    char* text = json_to_string(root, FALSE);
    json_node_unref(root);
    g_object_unref(builder);
    g_list_free(sorted);
    g_hash_table_unref(names);
    return text;
}

/* The file that the image was read from or saved to last; NULL for none. */
static char* path_of(gint32 image) {
    char* path = gimp_image_get_filename(image);
    if (path == NULL) {
        char* uri = gimp_image_get_imported_uri(image);
        path = uri != NULL ? g_filename_from_uri(uri, NULL, NULL) : NULL;
        g_free(uri);
    }
    return path;
}

/* ---- What the core is told */

/* Has the image's fonts activated. */
static void open_image(Image* image) {
    char* matched = g_malloc0(kListSize);
    char* missing = g_malloc0(kListSize);
    size_t matched_size = kListSize;
    size_t missing_size = kListSize;
    size_t identifier_size = sizeof image->identifier;
    int count = 0;
    HandleOpenExistingDocument(image->path, image->fonts, matched, &matched_size, missing, &missing_size,
                               &count);
    GetIDForDocument(image->path, image->identifier, &identifier_size);
    if (count > 0)
        gimp_fonts_refresh(); /* what was drawn is in the file; GIMP needs the font for what is drawn from now on */
    g_free(matched);
    g_free(missing);
}

/* A file that is open as two images is one document of the core's, until the last one goes. */
static gboolean is_open_elsewhere(const Image* image) {
    GHashTableIter each;
    gpointer other = NULL;
    g_hash_table_iter_init(&each, images);
    while (g_hash_table_iter_next(&each, NULL, &other)) {
        if (other != image && strcmp(((const Image*)other)->identifier, image->identifier) == 0)
            return TRUE;
    }
    return FALSE;
}

static void close_image(const Image* image) {
    if (!is_open_elsewhere(image))
        HandleCloseDocument(image->path != NULL ? image->path : image->identifier, "");
}

/* ---- What changed since the last look */

static void free_image(gpointer data) {
    Image* image = data;
    g_free(image->path);
    g_free(image->fonts);
    g_free(image);
}

/* An image that was not there before. It may still be read: its text comes by and by. */
static Image* meet_image(gint32 number) {
    Image* image = g_new0(Image, 1);
    size_t identifier_size = sizeof image->identifier;
    bool is_enabled = false;
    PluginIsEnabled(false,
                    &is_enabled); /* has a font manager that was ended come back; without one all goes on */
    image->path = path_of(number);
    image->fonts = font_list_of(number);
    image->is_dirty = gimp_image_is_dirty(number);
    if (image->path != NULL)
        open_image(image);
    else
        HandleCreateNewDocument(image->identifier, &identifier_size);
    return image;
}

/* An image that was there before. */
static void follow_image(gint32 number, Image* image) {
    char* path = path_of(number);
    char* fonts = font_list_of(number);
    const gboolean is_dirty = gimp_image_is_dirty(number);
    const gboolean has_moved = path != NULL && g_strcmp0(path, image->path) != 0;
    const gboolean has_other_fonts = strcmp(fonts, image->fonts) != 0;
    g_free(image->fonts);
    image->fonts = fonts;
    if (has_moved) {
        if (!is_open_elsewhere(image))
            SetPathForDocument(path, image->identifier);
        g_free(image->path);
        image->path = g_strdup(path);
    }
    if (image->path != NULL && (has_moved || has_other_fonts))
        open_image(image);
    if (has_moved || (image->path != NULL && image->is_dirty && !is_dirty))
        HandleSaveDocument(image->path, image->fonts);
    image->is_dirty = is_dirty;
    g_free(path);
}

static void look_at_images(void) {
    gint count = 0;
    gint* numbers = gimp_image_list(&count);
    GHashTable* there = g_hash_table_new(NULL, NULL);
    for (gint i = 0; i < count; ++i) {
        Image* image = g_hash_table_lookup(images, GINT_TO_POINTER(numbers[i]));
        g_hash_table_add(there, GINT_TO_POINTER(numbers[i]));
        if (image != NULL)
            follow_image(numbers[i], image);
        else
            g_hash_table_insert(images, GINT_TO_POINTER(numbers[i]), meet_image(numbers[i]));
    }
    GHashTableIter each;
    gpointer number = NULL;
    gpointer image = NULL;
    gboolean is_any_closed = FALSE;
    g_hash_table_iter_init(&each, images);
    while (g_hash_table_iter_next(&each, &number, &image)) {
        if (g_hash_table_contains(there, number))
            continue;
        close_image(image);
        g_hash_table_iter_remove(&each);
        is_any_closed = TRUE;
    }
    if (is_any_closed)
        gimp_fonts_refresh(); /* what was let go is gone from GIMP, too */
    g_hash_table_unref(there);
    g_free(numbers);
}

/* ---- The extension */

static void query(void) {
    gimp_install_procedure("extension-plugincore", "Activates the fonts of images",
                           "Has the fonts of images that are open activated by the font manager.", "", "", "",
                           NULL, NULL, GIMP_EXTENSION, 0, 0, NULL, NULL);
}

static void run(const gchar* name, gint num_parameters, const GimpParam* parameters, gint* num_results,
                GimpParam** results) {
    static GimpParam status = {GIMP_PDB_STATUS, {.d_status = GIMP_PDB_SUCCESS}};
    (void)name;
    (void)num_parameters;
    (void)parameters;
    *num_results = 1;
    *results = &status;
    gimp_extension_ack();
    if (InitializePluginCoreInterface(kPluginIdentifier, "") != PLUGINCORE_SUCCESS) {
        g_printerr(
            "plugincore-gimp: the font manager's library is missing or of another version, or the process "
            "bears no "
            "name that is served; PLUGINCORE_DEBUG_OUTPUT=- says more\n");
        return;
    }
    images = g_hash_table_new_full(NULL, NULL, NULL, free_image);
    for (;;) {
        look_at_images();
        IdleEvent();
        gimp_extension_process(kInterval); /* ends the process when GIMP has ended */
    }
}

/* GIMP ends: what is open counts as closed. */
static void quit(void) {
    if (images != NULL)
        TerminatePluginCoreInterface();
}

const GimpPlugInInfo PLUG_IN_INFO = {NULL, quit, query, run};

MAIN()
