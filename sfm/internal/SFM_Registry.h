// SFM_Registry.h - every live file manager, original or copy (internal).
//
// A file's destructor takes the file out of the list of each live manager,
// so that no manager, nor a copy of one, ever reaches a destroyed file.
#ifndef SFM_REGISTRY_H
#define SFM_REGISTRY_H

class SFM;
class SFM_File;

void SFM_AddManager(SFM* manager);
void SFM_RemoveManager(SFM* manager);
// Removes every registration of `file` from every live manager.
void SFM_ForgetFile(SFM_File* file);

#endif // SFM_REGISTRY_H
