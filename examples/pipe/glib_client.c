/* SPDX-License-Identifier: MIT */
/* A host in C on GLib's main loop: it follows the list of presets through a helper process, `vantlectl serve`,
 * and has nothing of Qt in it. Give it FIELD=VALUE to change a preset:
 *
 *   glib_client PROGRAM DATA_DIR [NAME FIELD=VALUE]
 */
#include <gio/gio.h>
#include <glib-unix.h>
#include <json-glib/json-glib.h>

#include <signal.h>
#include <stdio.h>
#include <string.h>

typedef struct {
  GMainLoop *loop;
  GSubprocess *helper;
  GOutputStream *to_helper;
  GDataInputStream *from_helper;
  gsize body_size; /* of the message that is being read; 0 before its Content-Length */
  gint next_id;
  GHashTable *waiting; /* Waiting by id */
  const char *edited_name;
  const char *assignment;
  gboolean lists; /* a list has been asked for and not come yet */
  int result;
} Host;

/* What becomes of a request; error is NULL unless it was refused. */
typedef void (*Answered)(Host *host, JsonObject *result, JsonObject *error);

typedef struct {
  Answered answered;
} Waiting;

static void read_header(Host *host);

static void
end(Host *host, int result)
{
  host->result = result;
  g_main_loop_quit(host->loop);
}

/* Takes over the parameters. A few hundred bytes, which a pipe takes without blocking; a host that sends much
 * writes asynchronously. */
static void
send_request(Host *host, const char *method, JsonBuilder *parameters, Answered answered)
{
  const gint id = host->next_id++;
  Waiting *waiting = g_new(Waiting, 1);
  waiting->answered = answered;
  g_hash_table_insert(host->waiting, GINT_TO_POINTER(id), waiting);

  g_autoptr(JsonBuilder) builder = json_builder_new();
  json_builder_begin_object(builder);
  json_builder_set_member_name(builder, "jsonrpc");
  json_builder_add_string_value(builder, "2.0");
  json_builder_set_member_name(builder, "id");
  json_builder_add_int_value(builder, id);
  json_builder_set_member_name(builder, "method");
  json_builder_add_string_value(builder, method);
  if (parameters) {
    json_builder_set_member_name(builder, "params");
    json_builder_add_value(builder, json_builder_get_root(parameters));
    g_object_unref(parameters);
  }
  json_builder_end_object(builder);

  g_autoptr(JsonNode) root = json_builder_get_root(builder);
  g_autofree char *body = json_to_string(root, FALSE);
  g_autofree char *message = g_strdup_printf("Content-Length: %zu\r\n\r\n%s", strlen(body), body);
  g_autoptr(GError) error = NULL;
  if (!g_output_stream_write_all(host->to_helper, message, strlen(message), NULL, NULL, &error)) {
    fprintf(stderr, "glib_client: %s\n", error->message);
    end(host, 1);
  }
}

static void
refused(Host *host, JsonObject *error)
{
  fprintf(stderr, "glib_client: %s\n", json_object_get_string_member(error, "message"));
  end(host, 1);
}

static void
listed(Host *host, JsonObject *result, JsonObject *error)
{
  host->lists = FALSE;
  if (error) {
    refused(host, error);
    return;
  }
  JsonArray *presets = json_object_get_array_member(result, "presets");
  printf("presets:");
  for (guint i = 0; i < json_array_get_length(presets); i++) {
    JsonObject *preset = json_array_get_object_element(presets, i);
    printf("%s %s", i ? "," : "", json_object_get_string_member(preset, "name"));
  }
  printf("\n");
  fflush(stdout);
}

static void
list(Host *host)
{
  if (!host->lists)
    send_request(host, "list", NULL, listed);
  host->lists = TRUE;
}

static void
changed_preset(Host *host, JsonObject *result, JsonObject *error)
{
  if (error) {
    refused(host, error);
    return;
  }
  printf("changed: %s\n", json_object_get_string_member(result, "name"));
  fflush(stdout);
}

/* The document has come with a stamp: if others change the preset before we do, the helper says so. */
static void
got_preset(Host *host, JsonObject *result, JsonObject *error)
{
  if (error) {
    refused(host, error);
    return;
  }
  JsonBuilder *parameters = json_builder_new();
  json_builder_begin_object(parameters);
  json_builder_set_member_name(parameters, "name");
  json_builder_add_string_value(parameters, host->edited_name);
  json_builder_set_member_name(parameters, "stamp");
  json_builder_add_string_value(parameters, json_object_get_string_member(result, "stamp"));
  json_builder_set_member_name(parameters, "assignments");
  json_builder_begin_array(parameters);
  json_builder_add_string_value(parameters, host->assignment);
  json_builder_end_array(parameters);
  json_builder_end_object(parameters);
  send_request(host, "set", parameters, changed_preset);
}

static void
edit(Host *host)
{
  JsonBuilder *parameters = json_builder_new();
  json_builder_begin_object(parameters);
  json_builder_set_member_name(parameters, "name");
  json_builder_add_string_value(parameters, host->edited_name);
  json_builder_end_object(parameters);
  send_request(host, "get", parameters, got_preset);
}

static void
failed(Host *host, JsonObject *failure)
{
  const char *operation = json_object_get_string_member(failure, "operation");
  fprintf(stderr, "glib_client: %s %s: %s\n", operation,
          json_object_get_string_member_with_default(failure, "name", ""),
          json_object_get_string_member(failure, "reason"));
  if (g_str_equal(operation, "start"))
    end(host, 1);
}

static void
take(Host *host, JsonObject *message)
{
  if (!json_object_has_member(message, "method")) {
    const gpointer id = GINT_TO_POINTER((gint)json_object_get_int_member_with_default(message, "id", 0));
    Waiting *waiting = g_hash_table_lookup(host->waiting, id);
    if (!waiting)
      return;
    const Answered answered = waiting->answered;
    g_hash_table_remove(host->waiting, id);
    JsonNode *result = json_object_get_member(message, "result");
    JsonNode *error = json_object_get_member(message, "error");
    answered(host, result ? json_node_get_object(result) : NULL,
             error ? json_node_get_object(error) : NULL);
    return;
  }
  const char *method = json_object_get_string_member(message, "method");
  if (g_str_equal(method, "loaded")) {
    list(host);
    if (host->assignment)
      edit(host);
  } else if (g_str_equal(method, "changed")) {
    list(host);
  } else if (g_str_equal(method, "failed")) {
    failed(host, json_object_get_object_member(message, "params"));
  }
}

typedef struct {
  Host *host;
  char *text;
} Body;

static void
body_read(GObject *stream, GAsyncResult *result, gpointer data)
{
  Body *body = data;
  Host *host = body->host;
  gsize size = 0;
  g_autoptr(JsonParser) parser = json_parser_new();
  if (!g_input_stream_read_all_finish(G_INPUT_STREAM(stream), result, &size, NULL) || size < host->body_size ||
      !json_parser_load_from_data(parser, body->text, (gssize)size, NULL)) {
    fprintf(stderr, "glib_client: the helper has ended\n");
    end(host, 1);
  } else {
    take(host, json_node_get_object(json_parser_get_root(parser)));
    host->body_size = 0;
    read_header(host);
  }
  g_free(body->text);
  g_free(body);
}

/* Lines up to an empty one, then as many bytes as "Content-Length" has told. */
static void
header_read(GObject *stream, GAsyncResult *result, gpointer data)
{
  Host *host = data;
  g_autofree char *line = g_data_input_stream_read_line_finish(G_DATA_INPUT_STREAM(stream), result, NULL, NULL);
  if (!line) {
    fprintf(stderr, "glib_client: the helper has ended\n");
    end(host, 1);
    return;
  }
  if (g_ascii_strncasecmp(line, "Content-Length:", 15) == 0)
    host->body_size = (gsize)g_ascii_strtoull(line + 15, NULL, 10);
  if (*g_strchomp(line) != '\0') {
    read_header(host);
    return;
  }
  Body *body = g_new(Body, 1);
  body->host = host;
  body->text = g_malloc(host->body_size + 1);
  g_input_stream_read_all_async(G_INPUT_STREAM(stream), body->text, host->body_size, G_PRIORITY_DEFAULT, NULL,
                                body_read, body);
}

static void
read_header(Host *host)
{
  g_data_input_stream_read_line_async(host->from_helper, G_PRIORITY_DEFAULT, NULL, header_read, host);
}

static gboolean
quit_on_signal(gpointer host)
{
  end(host, 0);
  return G_SOURCE_CONTINUE;
}

int
main(int argc, char **argv)
{
  if (argc != 3 && argc != 5) {
    fprintf(stderr, "usage: glib_client PROGRAM DATA_DIR [NAME FIELD=VALUE]\n");
    return 2;
  }
  Host host = {.next_id = 1};
  host.loop = g_main_loop_new(NULL, FALSE);
  host.waiting = g_hash_table_new_full(NULL, NULL, NULL, g_free);
  host.edited_name = argc == 5 ? argv[3] : NULL;
  host.assignment = argc == 5 ? argv[4] : NULL;
  g_unix_signal_add(SIGINT, quit_on_signal, &host);
  g_unix_signal_add(SIGTERM, quit_on_signal, &host);

  g_autoptr(GError) error = NULL;
  host.helper = g_subprocess_new(G_SUBPROCESS_FLAGS_STDIN_PIPE | G_SUBPROCESS_FLAGS_STDOUT_PIPE, &error, argv[1],
                                 "serve", "--data-dir", argv[2], NULL);
  if (!host.helper) {
    fprintf(stderr, "glib_client: %s\n", error->message);
    return 1;
  }
  host.to_helper = g_subprocess_get_stdin_pipe(host.helper);
  host.from_helper = g_data_input_stream_new(g_subprocess_get_stdout_pipe(host.helper));
  read_header(&host);
  g_main_loop_run(host.loop);

  /* The end of its input ends the helper, once all is saved. */
  g_output_stream_close(host.to_helper, NULL, NULL);
  g_subprocess_wait(host.helper, NULL, NULL);
  g_object_unref(host.from_helper);
  g_object_unref(host.helper);
  g_hash_table_unref(host.waiting);
  g_main_loop_unref(host.loop);
  return host.result;
}
