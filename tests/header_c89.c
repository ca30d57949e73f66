/* The public header in plain C: each of its calls is declared and linked, and a handle can be made and released. */
#include "zebldapcfg.h"

typedef void (*f)(void);

int main(void)
{
    const f calls[7][6] = {
        {(f)cfg_init, (f)cfg_reset, (f)cfg_unbind, (f)cfg_bind_s, (f)getInstallPath, (f)getDefaultConfigFilename},
        {(f)cfg_err2string, (f)cfg_get_errno, (f)cfg_get_exterror, (f)cfg_perror, (f)cfg_add_s, (f)cfg_get_entry},
        {(f)cfg_get_file_name, (f)cfg_get_file_line, (f)cfg_get_value, (f)cfg_get_enum, (f)cfg_modify_s, (f)cfg_get_dn},
        {(f)cfg_get_bitmask, (f)cfg_get_minimum, (f)cfg_get_maximum, (f)cfg_search_s, (f)cfg_delete_s, (f)cfg_msgfree},
        {(f)cfg_first_entry, (f)cfg_next_entry, (f)cfg_get_is_single, (f)cfg_dump_exception, (f)cfg_flush_s,
         (f)cfg_memfree},
        {(f)cfg_first_attribute, (f)cfg_next_attribute, (f)cfg_get_values, (f)cfg_count_values, (f)cfg_ber_free,
         (f)cfg_value_free},
        {(f)cfg_count_entries, (f)cfg_count_attributes, (f)cfg_get_attribute, (f)cfg_get_option, (f)cfg_set_option,
         (f)cfg_tree_view}};
    int i = 0;
    CFG* cfg = cfg_init();
    while (i < 42 && calls[i / 6][i % 6] != NULL)
        ++i;
    cfg_perror(cfg, "nothing");
    return i != 42 || cfg == NULL || cfg_unbind(cfg) != LDAP_SUCCESS;
}
